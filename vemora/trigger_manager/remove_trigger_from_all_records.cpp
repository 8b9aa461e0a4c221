// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

void Vemora_Trigger_Manager::remove_trigger_from_all_records_(
    const std::shared_ptr<trigger>& trigger_record) {
  Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params subscription_query;
  subscription_query.trigger = trigger_record;
  remove_trigger_from_subscriptions_(trigger_record,
                                     required(repository_)
                                         .metadata_event_subscriptions()
                                         .Get_Matching_Subscriptions(subscription_query));

  ETA_Camera_Repository::Get_Params eta_camera_query;
  eta_camera_query.trigger = trigger_record;
  remove_trigger_from_eta_camera_records_(
      trigger_record, required(repository_).eta_cameras().get(eta_camera_query));
}

}  // namespace kuv::vemora
