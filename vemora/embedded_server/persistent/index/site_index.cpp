// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/site_index.h"

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

Server_Index& Site_Index::servers() {
  if (!servers_) {
    servers_ = std::make_unique<Server_Index>(database_);
  }
  return *servers_;
}

const std::map<std::string, std::set<std::string>>& Site_Index::object_types() {
  if (!object_types_) {
    std::map<std::string, std::set<std::string>> types;
    for_each_row<rows::Meta_Type>(database_, "name, type", [&types](const rows::Meta_Type& row) {
      types[row.key.name].insert(row.key.type);
    });
    object_types_ = std::move(types);
  }
  return *object_types_;
}

Camera_Index& Site_Index::cameras() {
  if (!cameras_) {
    cameras_ = std::make_unique<Camera_Index>(Camera_Index::load(database_, capability_guard_));
  }
  return *cameras_;
}

Schedule_Index& Site_Index::schedules() {
  if (!schedules_) {
    schedules_ = std::make_unique<Schedule_Index>(database_);
  }
  return *schedules_;
}

Trigger_Index& Site_Index::triggers() {
  asked_.triggers = true;
  if (!triggers_) {
    triggers_ = std::make_unique<Trigger_Index>(database_, schedules());
  }
  return *triggers_;
}

Subscription_Index& Site_Index::subscriptions() {
  asked_.subscriptions = true;
  Trigger_Index& triggers = this->triggers();
  if (!subscriptions_) {
    subscriptions_ = std::make_unique<Subscription_Index>(database_, cameras(), triggers);
  }
  return *subscriptions_;
}

ETA_Camera_Index& Site_Index::eta_cameras() {
  asked_.eta_cameras = true;
  Trigger_Index& triggers = this->triggers();
  if (!eta_cameras_) {
    eta_cameras_ = std::make_unique<ETA_Camera_Index>(database_, cameras(), triggers);
  }
  return *eta_cameras_;
}

bool Site_Index::add_trigger(const std::shared_ptr<trigger>& added) {
  if (triggers().contains(added->id)) {
    return false;
  }
  triggers().insert(added);
  return true;
}

void Site_Index::restore_trigger(std::uint64_t id) {
  Subscription_Index& subscriptions = this->subscriptions();
  ETA_Camera_Index& eta_cameras = this->eta_cameras();
  const std::shared_ptr<trigger> fresh = triggers().restore(id);
  subscriptions.replace_trigger(fresh);
  eta_cameras.replace_trigger(fresh);
}

void Site_Index::delete_triggers(const std::set<std::uint64_t>& dead) {
  if (dead.empty()) {
    return;
  }
  // All is read before anything is changed: a fault in between would leave half of it.
  Subscription_Index& subscriptions = this->subscriptions();
  ETA_Camera_Index& eta_cameras = this->eta_cameras();
  subscriptions.drop_triggers(dead);
  eta_cameras.drop_triggers(dead);
  for (const std::uint64_t id : dead) {
    triggers().erase(id);
  }
}

Site_Index::Net_Changes Site_Index::settle() {
  Net_Changes net;
  if (triggers_ && asked_.triggers) {
    net.triggers = triggers_->settle();
    net.strays = triggers_->take_strays();
  }
  if (subscriptions_ && asked_.subscriptions) {
    net.subscriptions = subscriptions_->settle();
  }
  if (eta_cameras_ && asked_.eta_cameras) {
    net.eta_cameras = eta_cameras_->settle();
  }
  return net;
}

void Site_Index::forget_changes() {
  eta_cameras_.reset();
  subscriptions_.reset();
  triggers_.reset();
}

void Site_Index::save_ids() {
  if (subscriptions_) {
    subscriptions_->save_ids(database_);
  }
  if (eta_cameras_) {
    eta_cameras_->save_ids(database_);
  }
}

}  // namespace kuv::vemora::embedded_server
