// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>

#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"

/// What tests of servers share: see vemora/testing/contract_suite.h.
namespace kuv::test {

using namespace kuv::vemora;

/// The ids that a mistake in signedness shows at.
inline constexpr std::uint64_t largest_signed_id = 9223372036854775807U;
inline constexpr std::uint64_t first_unsigned_id = 9223372036854775808U;
inline constexpr std::uint64_t largest_id = 18446744073709551615U;

// Sources of triggers.

inline Trigger_Source source_of_type(Trigger_Source_Type type) {
  Trigger_Source source;
  source.type = type;
  return source;
}

inline Trigger_Source onvif(const std::string& topic) {
  Trigger_Source source = source_of_type(Trigger_Source_Type::onvif_metadata);
  source.onvif_topic = topic;
  return source;
}

inline Trigger_Source generic_events() {
  return source_of_type(Trigger_Source_Type::metadata_event);
}

inline Trigger_Source object_detection(const std::string& type, bool motion_required = false) {
  Trigger_Source source = source_of_type(Trigger_Source_Type::object_detection);
  source.search_item = Object_Search_Item{type, motion_required};
  return source;
}

inline Trigger_Source motion_detection() {
  return source_of_type(Trigger_Source_Type::motion_detection);
}

inline Trigger_Source audio_detection() {
  return source_of_type(Trigger_Source_Type::audio_detection);
}

inline Trigger_Source lasting(Trigger_Source source, Activity_Duration_Mode mode,
                              std::chrono::microseconds least, std::chrono::microseconds dropout) {
  source.activity_duration = Activity_Duration{mode, least, dropout};
  return source;
}

// Records as the trigger manager makes them, before they are stored.

/// A trigger record of that id, named after it.
inline std::shared_ptr<trigger> a_trigger(std::uint64_t id,
                                          std::initializer_list<Trigger_Source> sources = {}) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  record->name = fmt::format("trigger {}", id);
  record->sources = sources;
  return record;
}

/// Nothing but an id, which is all that a query or a link reads of a camera.
inline std::shared_ptr<camera> camera_of_id(std::uint64_t id) {
  auto record = std::make_shared<camera>();
  record->id = id;
  return record;
}

inline std::shared_ptr<metadata_event_subscription> a_topic_subscription(
    std::uint64_t camera_id, const std::string& topic,
    std::initializer_list<std::uint64_t> trigger_ids) {
  auto record = std::make_shared<metadata_event_subscription>();
  record->name = topic;
  record->onvif_topic = topic;
  record->camera = camera_of_id(camera_id);
  for (const std::uint64_t trigger_id : trigger_ids) {
    record->add_trigger(a_trigger(trigger_id));
  }
  return record;
}

inline std::shared_ptr<eta_camera> an_eta_camera(std::uint64_t camera_id,
                                                 std::initializer_list<std::uint64_t> trigger_ids) {
  auto record = std::make_shared<eta_camera>();
  record->camera = camera_of_id(camera_id);
  for (const std::uint64_t trigger_id : trigger_ids) {
    record->add_trigger(a_trigger(trigger_id));
  }
  return record;
}

}  // namespace kuv::test
