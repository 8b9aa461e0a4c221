// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/search_items.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

/// What a camera delivers to a trigger.
struct Delivery {
  std::uint64_t camera_id;
  const std::string* topic;  ///< of the subscription
};

/// Trigger by trigger and camera by camera, so that what is read together, copied and freed lies
/// side by side in memory.
void add_topics(std::map<std::uint64_t, std::vector<Delivery>>& deliveries_by_trigger,
                Trigger_Config_State& state) {
  for (auto& [trigger_id, deliveries] : deliveries_by_trigger) {
    std::sort(deliveries.begin(), deliveries.end(),
              [](const Delivery& left, const Delivery& right) {
                return left.camera_id < right.camera_id;
              });
    auto& topics_by_camera = state.onvif_topics_by_trigger[trigger_id];
    for (const Delivery& delivery : deliveries) {
      topics_by_camera.try_emplace(topics_by_camera.end(), delivery.camera_id)
          ->second.insert(*delivery.topic);
    }
  }
}

}  // namespace

/// Reads what the database holds, rather than what the documents asked for: events will be matched
/// against the records.
void Vemora_Trigger_Manager::sync_notification_pusher_(Answer answer) {
  collect_subscriptions_();
  collect_search_items_();
  hand_over_the_state_(answer);
}

void Vemora_Trigger_Manager::hand_over_the_state_(Answer answer) {
  Trigger_Notification_Pusher& pusher = required(notification_pusher_);
  if (answer == Answer::whole_state) {
    pusher.apply_trigger_state(state_);
    return;
  }
  Trigger_Config_State rest;
  rest.errors = state_.errors;
  pusher.apply_trigger_state(std::exchange(state_, std::move(rest)));
}

void Vemora_Trigger_Manager::collect_subscriptions_() {
  const std::set<std::uint64_t> nobody;  // with no live triggers every subscription is asked for
  const Subscription_List subscriptions =
      required(repository_).metadata_event_subscriptions().get_stale(nobody);
  std::map<std::uint64_t, std::vector<Delivery>> deliveries_by_trigger;
  for (const auto& subscription : subscriptions) {
    if (!subscription->camera) {
      for (const std::uint64_t trigger_id : subscription->trigger_ids()) {
        state_.subscriptions_by_trigger[trigger_id].insert(subscription->id);
      }
      continue;
    }
    const std::uint64_t camera_id = subscription->camera_id();
    // A subscription with a camera and no topic is a corrupt record. It ends the pass: a pusher
    // that is told less than the truth would drop notifications without anybody noticing.
    const std::string& topic = subscription->onvif_topic.value();
    auto place = deliveries_by_trigger.begin();  // trigger ids ascend: a hint
    for (const std::uint64_t trigger_id : subscription->trigger_ids()) {
      place = deliveries_by_trigger.try_emplace(place, trigger_id);
      place->second.push_back({camera_id, &topic});
      ++place;
    }
  }
  add_topics(deliveries_by_trigger, state_);
}

void Vemora_Trigger_Manager::collect_search_items_() {
  for (const std::shared_ptr<eta_camera>& detection_map :
       required(repository_).eta_cameras().get_all()) {
    const std::uint64_t camera_id = detection_map->camera_id();
    for (const std::shared_ptr<trigger>& record : detection_map->triggers) {
      // Assigned, not merged: if a camera ever had two detection records, the later one would
      // count.
      state_.search_items_by_trigger[record->id][camera_id] =
          expand_search_items_(search_items(*record));
    }
  }
}

}  // namespace kuv::vemora
