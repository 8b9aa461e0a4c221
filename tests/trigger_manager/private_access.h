// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "trigger_manager/builders.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

// Some of what the manager does inside can be reached by no document, since the parser lets none
// such pass, and what an error carries is not seen outside. An explicit instantiation may name
// private members; each opens one of them to the tests.

namespace kuv::test {

template <class Name, typename Name::Member member>
struct Opened {
  friend typename Name::Member open(Name) { return member; }
};

struct Get_Trigger_Record {
  using Member = Trigger_Record (Vemora_Trigger_Manager::*)(const Trigger_Config&);
  friend Member open(Get_Trigger_Record);
};
template struct Opened<Get_Trigger_Record, &Vemora_Trigger_Manager::get_trigger_record_>;

struct Record_Detection_Failure {
  using Member = void (Vemora_Trigger_Manager::*)(std::string_view, const trigger&,
                                                  const eta_camera&);
  friend Member open(Record_Detection_Failure);
};
template struct Opened<Record_Detection_Failure,
                       &Vemora_Trigger_Manager::record_persistence_failure_>;

struct Record_Subscription_Failure {
  using Member = void (Vemora_Trigger_Manager::*)(std::string_view, const trigger&,
                                                  const metadata_event_subscription&);
  friend Member open(Record_Subscription_Failure);
};
template struct Opened<Record_Subscription_Failure,
                       &Vemora_Trigger_Manager::record_persistence_failure_>;

struct Get_Cameras_That_Need_Subscriptions {
  using Member = std::map<std::string, Cameras> (Vemora_Trigger_Manager::*)(
      const std::vector<std::string>&, const Cameras&);
  friend Member open(Get_Cameras_That_Need_Subscriptions);
};
template struct Opened<Get_Cameras_That_Need_Subscriptions,
                       &Vemora_Trigger_Manager::get_cameras_that_need_subscriptions_>;

struct Update_Subscription_Record {
  using Member = bool (Vemora_Trigger_Manager::*)(const Subscription_Record&);
  friend Member open(Update_Subscription_Record);
};
template struct Opened<Update_Subscription_Record,
                       &Vemora_Trigger_Manager::update_subscription_record_>;

struct Add_Trigger_To_Subscriptions {
  using Member = void (Vemora_Trigger_Manager::*)(const Trigger_Record&, const Subscriptions&);
  friend Member open(Add_Trigger_To_Subscriptions);
};
template struct Opened<Add_Trigger_To_Subscriptions,
                       &Vemora_Trigger_Manager::add_trigger_to_subscriptions_>;

struct Remove_Trigger_From_Subscriptions {
  using Member = void (Vemora_Trigger_Manager::*)(const Trigger_Record&, const Subscriptions&);
  friend Member open(Remove_Trigger_From_Subscriptions);
};
template struct Opened<Remove_Trigger_From_Subscriptions,
                       &Vemora_Trigger_Manager::remove_trigger_from_subscriptions_>;

struct Expand_Search_Items {
  using Member = std::set<Object_Search_Item> (Vemora_Trigger_Manager::*)(
      const std::set<Object_Search_Item>&) const;
  friend Member open(Expand_Search_Items);
};
template struct Opened<Expand_Search_Items, &Vemora_Trigger_Manager::expand_search_items_>;

struct Manager_Lock {
  using Member = boost::shared_mutex Vemora_Trigger_Manager::*;
  friend Member open(Manager_Lock);
};
template struct Opened<Manager_Lock, &Vemora_Trigger_Manager::mutex_>;

struct Cameras_To_Reconcile {
  using Member = std::set<std::uint64_t> Vemora_Trigger_Manager::*;
  friend Member open(Cameras_To_Reconcile);
};
template struct Opened<Cameras_To_Reconcile, &Vemora_Trigger_Manager::cameras_to_reconcile_>;

struct Working_State {
  using Member = Trigger_Config_State Vemora_Trigger_Manager::*;
  friend Member open(Working_State);
};
template struct Opened<Working_State, &Vemora_Trigger_Manager::state_>;

}  // namespace kuv::test
