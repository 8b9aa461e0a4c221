// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Subscription_Query =
    Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

}  // namespace

void Vemora_Trigger_Manager::process_onvif_based_subscriptions_(const Trigger_Details& details,
                                                                const Camera_Selection& selection) {
  auto& subscriptions = required(repository_).metadata_event_subscriptions();
  Subscription_Query query;
  query.trigger = details.trigger;
  if (selection && selection->empty()) {
    remove_trigger_from_subscriptions_(details.trigger,
                                       subscriptions.Get_Matching_Subscriptions(query));
    return;
  }
  query.cameras = selection.value_or(Camera_List());
  query.topics = details.config.all_source_topics();
  if (!query.topics.empty()) {
    create_onvif_metadata_source_subscriptions_if_necessary_(details, query.cameras);
    update_onvif_metadata_source_subscriptions_if_necessary_(details, query.cameras);
  }
  query.topics_and_cameras = Subscription_Query::Topics_And_Cameras::outside;
  remove_trigger_from_subscriptions_(details.trigger,
                                     subscriptions.Get_Matching_Subscriptions(query));
}

}  // namespace kuv::vemora
