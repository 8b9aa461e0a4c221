// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Subscription_Query =
    Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

bool has_generic_source(const std::set<Trigger_Source>& sources) {
  Trigger_Source generic;
  generic.type = Trigger_Source_Type::metadata_event;
  return sources.count(generic) != 0;
}

}  // namespace

void Vemora_Trigger_Manager::process_generic_metadata_source_subscriptions_(
    const Trigger_Details& details) {
  auto& subscriptions = required(repository_).metadata_event_subscriptions();
  Subscription_Query query;
  query.trigger = details.trigger;
  query.kind = Subscription_Query::Kind::generic;
  if (!has_generic_source(details.config.sources)) {
    remove_trigger_from_subscriptions_(details.trigger,
                                       subscriptions.Get_Matching_Subscriptions(query));
    return;
  }

  query.tags = details.config.tags.event_subscription;
  query.trigger_match = Subscription_Query::Trigger_Match::lacking;
  add_trigger_to_subscriptions_(details.trigger, subscriptions.Get_Matching_Subscriptions(query));
  if (query.tags.empty()) {
    return;  // an empty filter matches every generic subscription: there is none to leave
  }
  query.trigger_match = Subscription_Query::Trigger_Match::holding;
  query.tags_match = Subscription_Query::Tags::not_matching;
  remove_trigger_from_subscriptions_(details.trigger,
                                     subscriptions.Get_Matching_Subscriptions(query));
}

}  // namespace kuv::vemora
