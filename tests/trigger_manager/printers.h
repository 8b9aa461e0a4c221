// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <ostream>

#include "vemora/platform/directive_config_processing.h"
#include "vemora/trigger_parser/trigger_config_state.h"

// Equality and printing of what the manager answers, for the tests alone.

namespace kuv::vemora {

namespace Directive_Config_Processing {

inline bool operator==(const Error& left, const Error& right) {
  return left.category == right.category && left.message == right.message;
}

inline std::ostream& operator<<(std::ostream& stream, const Error& error) {
  return stream << "category " << static_cast<int>(error.category) << ": " << error.message;
}

inline bool operator==(const Result& left, const Result& right) {
  return left.success == right.success && left.errors == right.errors;
}

}  // namespace Directive_Config_Processing

// Object_Search_Item's own ordering passes over the motion flag.
inline bool operator==(const Object_Search_Item& left, const Object_Search_Item& right) {
  return left.object_type == right.object_type && left.motion_required == right.motion_required;
}

inline std::ostream& operator<<(std::ostream& stream, const Object_Search_Item& item) {
  return stream << item.object_type << (item.motion_required ? " in motion" : "");
}

inline bool operator==(const Trigger_Config::Options& left, const Trigger_Config::Options& right) {
  return left.any_time == right.any_time;
}

inline std::ostream& operator<<(std::ostream& stream, const Trigger_Config::Options& options) {
  return stream << (options.any_time ? "at any time" : "as scheduled");
}

inline bool operator==(const Notification_Properties& left, const Notification_Properties& right) {
  return left.max_latency == right.max_latency && left.digest_cooldown == right.digest_cooldown &&
         left.ack_timeout == right.ack_timeout && left.nack_delay == right.nack_delay;
}

inline bool operator==(const Trigger_Config_State& left, const Trigger_Config_State& right) {
  return left.applied_triggers == right.applied_triggers &&
         left.onvif_topics_by_trigger == right.onvif_topics_by_trigger &&
         left.errors == right.errors &&
         left.subscriptions_by_trigger == right.subscriptions_by_trigger &&
         left.search_items_by_trigger == right.search_items_by_trigger &&
         left.properties == right.properties;
}

/// Member by member, on lines of their own.
void PrintTo(const Trigger_Config_State& state, std::ostream* stream);
void PrintTo(const Notification_Properties& properties, std::ostream* stream);

}  // namespace kuv::vemora
