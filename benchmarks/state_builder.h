// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>

#include "vemora/trigger_parser/trigger_config_state.h"

namespace kuv::benchmarks {

/// Builds the state that a pusher receives from the rows of the floors.
class State_Builder {
 public:
  explicit State_Builder(vemora::Trigger_Config_State& state) : state_(state) { state_ = {}; }

  void add_trigger(std::uint64_t id) {
    state_.applied_triggers.emplace_hint(state_.applied_triggers.end(), id,
                                         vemora::Trigger_Config::Options{});
  }
  void add_source(std::uint64_t trigger_id, const std::string& object_type) {
    if (!object_type.empty()) {
      items_[trigger_id].insert({object_type, false});
    }
  }
  void add_subscription(std::uint64_t id, std::string topic, std::uint64_t camera_id) {
    subscriptions_[id] = {std::move(topic), camera_id};
  }
  void add_subscription_link(std::uint64_t record_id, std::uint64_t trigger_id) {
    const Subscription& record = subscriptions_.at(record_id);
    if (record.topic.empty()) {
      state_.subscriptions_by_trigger[trigger_id].insert(record_id);
    } else {
      state_.onvif_topics_by_trigger[trigger_id][record.camera_id].insert(record.topic);
    }
  }
  void add_detection(std::uint64_t id, std::uint64_t camera_id) { detections_[id] = camera_id; }
  void add_detection_link(std::uint64_t record_id, std::uint64_t trigger_id) {
    const auto found = items_.find(trigger_id);
    if (found != items_.end()) {
      state_.search_items_by_trigger[trigger_id][detections_.at(record_id)] = found->second;
    }
  }

 private:
  struct Subscription {
    std::string topic;
    std::uint64_t camera_id = 0;
  };

  vemora::Trigger_Config_State& state_;
  std::unordered_map<std::uint64_t, std::set<vemora::Object_Search_Item>> items_;
  std::unordered_map<std::uint64_t, Subscription> subscriptions_;
  std::unordered_map<std::uint64_t, std::uint64_t> detections_;
};

}  // namespace kuv::benchmarks
