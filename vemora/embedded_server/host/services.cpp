// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/services.h"

namespace kuv::vemora::embedded_server {
Recording_Capture_Manager::Recording_Capture_Manager(std::shared_ptr<capture::Manager> target)
    : target_(std::move(target)) {}

void Recording_Capture_Manager::reconcile_metadata_stream(std::uint64_t camera_id) {
  asked_for_.insert(camera_id);
  if (target_ && !holds_back_) {
    target_->reconcile_metadata_stream(camera_id);
  }
  reconciled_.insert(camera_id);
}

void Recording_Capture_Manager::forget() {
  asked_for_.clear();
  reconciled_.clear();
  holds_back_ = false;
}

Snapshot_Pusher::Snapshot_Pusher(std::shared_ptr<Trigger_Notification_Pusher> target)
    : target_(std::move(target)) {}

void Snapshot_Pusher::stop() {
  if (target_) {
    target_->stop();
  }
  forget();
}

void Snapshot_Pusher::apply_trigger_state(Trigger_Config_State state) {
  if (target_ && !holds_back_) {
    target_->apply_trigger_state(state);
  }
  state_ = std::move(state);
}

void Snapshot_Pusher::forget() {
  state_.reset();
  holds_back_ = false;
}

std::vector<std::string> Inventory_Meta_Type_Resolver::resolve(
    const std::vector<std::string>& types) {
  return resolve_object_types(types_, types);
}

}  // namespace kuv::vemora::embedded_server
