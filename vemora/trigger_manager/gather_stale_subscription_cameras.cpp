// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

void Vemora_Trigger_Manager::gather_stale_subscription_cameras_() {
  const auto stale =
      required(repository_).metadata_event_subscriptions().get_stale(applied_trigger_ids_());
  for (const auto& subscription : stale) {
    if (subscription->camera) {
      cameras_to_reconcile_.insert(subscription->camera_id());
    }
  }
}

}  // namespace kuv::vemora
