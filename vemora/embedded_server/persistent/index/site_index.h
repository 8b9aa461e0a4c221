// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "vemora/embedded_server/persistent/index/camera_index.h"
#include "vemora/embedded_server/persistent/index/eta_camera_index.h"
#include "vemora/embedded_server/persistent/index/schedule_index.h"
#include "vemora/embedded_server/persistent/index/server_index.h"
#include "vemora/embedded_server/persistent/index/subscription_index.h"
#include "vemora/embedded_server/persistent/index/trigger_index.h"

namespace kuv::vemora::embedded_server {

/// The site as one pass sees it: what the database held when it was first asked for, one ordered
/// statement a table, and everything the pass did to it since. All queries are answered from here;
/// nothing of it outlives the pass.
class Site_Index {
 public:
  explicit Site_Index(odb::database& database, Capability_Guard capability_guard)
      : database_(database), capability_guard_(std::move(capability_guard)) {}

  Server_Index& servers();
  const std::map<std::string, std::set<std::string>>& object_types();
  Camera_Index& cameras();
  Schedule_Index& schedules();
  Trigger_Index& triggers();
  Subscription_Index& subscriptions();
  ETA_Camera_Index& eta_cameras();

  /// Stores a new trigger; false when its id is taken.
  bool add_trigger(const std::shared_ptr<trigger>& added);

  /// Forgets refused changes of a trigger wherever its record is held.
  void restore_trigger(std::uint64_t id);

  /// Deletes triggers, and their links with them.
  void delete_triggers(const std::set<std::uint64_t>& dead);

  /// To be called after a look at the site that is none of the pass: what was only looked at then
  /// is not settled. A pass tidies up the tables that it asks for, and no others.
  void forget_look() { asked_ = {}; }

  /// Runs a look at the site that is none of the pass.
  template <class Look>
  void look(Look at_site) {
    const Asked asked = asked_;
    at_site();
    asked_ = asked;
  }

  /// What the pass changed, as far as it asked for anything at all.
  struct Net_Changes {
    std::map<std::uint64_t, Trigger_Index::Change> triggers;
    Trigger_Index::Strays strays;
    Subscription_Index::Net_Changes subscriptions;
    ETA_Camera_Index::Net_Changes eta_cameras;

    bool empty() const {
      return triggers.empty() && strays.empty() && subscriptions.empty() && eta_cameras.empty();
    }
  };
  Net_Changes settle();
  void save_ids();

  /// From now on it shows what the database holds again. What no pass changes stays in memory.
  void forget_changes();

 private:
  struct Asked {
    bool triggers = false;
    bool subscriptions = false;
    bool eta_cameras = false;
  };

  odb::database& database_;
  Capability_Guard capability_guard_;
  Asked asked_;
  std::unique_ptr<Server_Index> servers_;
  std::optional<std::map<std::string, std::set<std::string>>> object_types_;
  std::unique_ptr<Camera_Index> cameras_;
  std::unique_ptr<Schedule_Index> schedules_;
  std::unique_ptr<Trigger_Index> triggers_;
  std::unique_ptr<Subscription_Index> subscriptions_;
  std::unique_ptr<ETA_Camera_Index> eta_cameras_;
};

}  // namespace kuv::vemora::embedded_server
