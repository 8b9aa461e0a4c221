// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

/// The one place where a changed subscription is stored, so that no camera of one is forgotten.
bool Vemora_Trigger_Manager::update_subscription_record_(
    const std::shared_ptr<metadata_event_subscription>& subscription) {
  if (!required(repository_).metadata_event_subscriptions().update(subscription)) {
    return false;
  }
  if (subscription->camera) {
    cameras_to_reconcile_.insert(subscription->camera_id());
  }
  return true;
}

// Both store every subscription they are given, changed or not: the queries already leave out what
// needs no change, and where record and query disagree, storing the record and reconciling its
// camera puts both right.

void Vemora_Trigger_Manager::add_trigger_to_subscriptions_(
    const std::shared_ptr<trigger>& trigger_record, const Subscription_List& subscriptions) {
  for (const auto& subscription : subscriptions) {
    subscription->add_trigger(trigger_record);
    if (!update_subscription_record_(subscription)) {
      record_persistence_failure_(
          fmt::format("Failed to add trigger to subscription {}", subscription->id),
          *trigger_record, *subscription);
    }
  }
}

void Vemora_Trigger_Manager::remove_trigger_from_subscriptions_(
    const std::shared_ptr<trigger>& trigger_record, const Subscription_List& subscriptions) {
  for (const auto& subscription : subscriptions) {
    subscription->remove_trigger(trigger_record);
    if (!update_subscription_record_(subscription)) {
      record_persistence_failure_(
          fmt::format("Failed to remove trigger from subscription {}", subscription->id),
          *trigger_record, *subscription);
    }
  }
}

}  // namespace kuv::vemora
