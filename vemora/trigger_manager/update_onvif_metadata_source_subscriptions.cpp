// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Subscription_Query =
    Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

}  // namespace

void Vemora_Trigger_Manager::update_onvif_metadata_source_subscriptions_if_necessary_(
    const Trigger_Details& details, const Camera_List& cameras) {
  Subscription_Query query;
  query.trigger = details.trigger;
  query.topics = details.config.all_source_topics();
  query.cameras = cameras;
  query.trigger_match = Subscription_Query::Trigger_Match::lacking;
  query.kind = Subscription_Query::Kind::topic;
  add_trigger_to_subscriptions_(
      details.trigger,
      required(repository_).metadata_event_subscriptions().Get_Matching_Subscriptions(query));
}

}  // namespace kuv::vemora
