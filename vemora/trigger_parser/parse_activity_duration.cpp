// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/parse_activity_duration.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdint>

#include "vemora/trigger_parser/members.h"

namespace kuv::vemora {
namespace {

struct Limits {
  std::uint32_t least;
  std::uint32_t most;
};

constexpr Limits min_duration_limits{1000, 28800000};  // 1 s to 8 h, in milliseconds
constexpr Limits dropout_limits{1000, 600000};         // 1 s to 10 min, in milliseconds

std::chrono::microseconds checked_duration(std::uint32_t milliseconds, const Json::Value& value,
                                           const Limits& limits, const char* key, Faults& faults) {
  if (milliseconds < limits.least || milliseconds > limits.most) {
    faults.add(value, fmt::format("\"activityDuration.{}\" must be between {} and {}.", key,
                                  limits.least, limits.most));
  }
  return std::chrono::milliseconds(milliseconds);
}

/// An invalid mode counts as the one that requires least: it is not known what was meant, and no
/// further fault is told that the right mode might not have.
Activity_Duration_Mode parse_mode(const Member& mode, Faults& faults) {
  if (mode->isNull()) {
    return Activity_Duration_Mode::object_presence;
  }
  const auto name = text_of(*mode);
  if (!faults.require(name.has_value(), mode, "\"activityDuration.mode\" must be a string.")) {
    return Activity_Duration_Mode::object_track;
  }
  if (*name == "object-presence") {
    return Activity_Duration_Mode::object_presence;
  }
  faults.require(*name == "object-track", mode,
                 "\"activityDuration.mode\" must be \"object-presence\" or \"object-track\".");
  return Activity_Duration_Mode::object_track;
}

std::chrono::microseconds parse_min_duration(const Member& min_duration, Faults& faults) {
  // Zero is what a form sends that was left empty, so it counts as missing and not as too short.
  const std::uint32_t given = min_duration->isUInt() ? min_duration->asUInt() : 0;
  return faults.require(given != 0, min_duration,
                        "\"activityDuration.minDurationMs\" is missing or invalid.")
             ? checked_duration(given, *min_duration, min_duration_limits, "minDurationMs", faults)
             : std::chrono::microseconds::zero();
}

/// A track needs no dropout: the object stays the same when it is out of sight for a while.
/// Presence does, since every frame is asked anew.
std::chrono::microseconds parse_dropout(const Member& dropout, Activity_Duration_Mode mode,
                                        Faults& faults) {
  if (dropout->isNull()) {
    faults.require(mode == Activity_Duration_Mode::object_track, dropout,
                   "\"activityDuration.dropoutMs\" is missing or invalid.");
    return std::chrono::microseconds::zero();
  }
  return faults.require(dropout->isUInt(), dropout,
                        "\"activityDuration.dropoutMs\" must be an unsigned integer.")
             ? checked_duration(dropout->asUInt(), *dropout, dropout_limits, "dropoutMs", faults)
             : std::chrono::microseconds::zero();
}

}  // namespace

std::optional<Activity_Duration> parse_activity_duration(const Member& activity,
                                                         Trigger_Source_Type source_type,
                                                         Faults& faults) {
  if (activity->isNull() || !faults.require(activity->isObject(), activity,
                                            "\"activityDuration\" must be a JSON object.")) {
    return std::nullopt;
  }
  Member mode, min_duration, dropout;
  find_members(*activity, Wanted{"mode", mode}, Wanted{"minDurationMs", min_duration},
               Wanted{"dropoutMs", dropout});
  Activity_Duration parsed;
  parsed.mode = parse_mode(mode, faults);
  if (source_type == Trigger_Source_Type::motion_detection) {
    parsed.mode = Activity_Duration_Mode::object_presence;  // motion has no track to follow
  }
  parsed.min_duration = parse_min_duration(min_duration, faults);
  parsed.dropout = parse_dropout(dropout, parsed.mode, faults);
  return parsed;
}

}  // namespace kuv::vemora
