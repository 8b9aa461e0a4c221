#include "trigger_parser/parse_activity_duration.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdint>
#include <string>

#include "trigger_parser/find_members.h"
#include "trigger_parser/validation.h"

namespace kuv::vemora {
namespace {

struct Limits {
  std::uint32_t least;
  std::uint32_t most;
};

constexpr Limits min_duration_limits{1000, 28800000};  // 1 s to 8 h, in milliseconds
constexpr Limits dropout_limits{1000, 600000};         // 1 s to 10 min, in milliseconds

std::chrono::microseconds checked_duration(std::uint32_t milliseconds, const Limits& limits,
                                           const char* key) {
  if (milliseconds < limits.least || milliseconds > limits.most) {
    raise_validation_error(fmt::format("\"activityDuration.{}\" must be between {} and {}.", key,
                                       limits.least, limits.most));
  }
  return std::chrono::milliseconds(milliseconds);
}

Activity_Duration_Mode parse_mode(const Json::Value& mode) {
  if (mode.isNull()) {
    return Activity_Duration_Mode::object_presence;
  }
  require(mode.isString(), "\"activityDuration.mode\" must be a string.");
  const std::string name = mode.asString();
  if (name == "object-presence") {
    return Activity_Duration_Mode::object_presence;
  }
  require(name == "object-track",
          "\"activityDuration.mode\" must be \"object-presence\" or \"object-track\".");
  return Activity_Duration_Mode::object_track;
}

std::chrono::microseconds parse_min_duration(const Json::Value& value) {
  // Zero is what a form sends that was left empty, so it counts as missing and not as too short.
  require(value.isUInt() && value.asUInt() != 0,
          "\"activityDuration.minDurationMs\" is missing or invalid.");
  return checked_duration(value.asUInt(), min_duration_limits, "minDurationMs");
}

/// A track needs no dropout: the object stays the same when it is out of sight for a while.
/// Presence does, since every frame is asked anew.
std::chrono::microseconds parse_dropout(const Json::Value& value, Activity_Duration_Mode mode) {
  if (value.isNull()) {
    require(mode == Activity_Duration_Mode::object_track,
            "\"activityDuration.dropoutMs\" is missing or invalid.");
    return std::chrono::microseconds::zero();
  }
  require(value.isUInt(), "\"activityDuration.dropoutMs\" must be an unsigned integer.");
  return checked_duration(value.asUInt(), dropout_limits, "dropoutMs");
}

}  // namespace

std::optional<Activity_Duration> parse_activity_duration(const Json::Value& activity,
                                                         Trigger_Source_Type source_type) {
  if (activity.isNull()) {
    return std::nullopt;
  }
  require(activity.isObject(), "\"activityDuration\" must be a JSON object.");
  const auto [mode, min_duration, dropout] =
      find_members(activity, "mode", "minDurationMs", "dropoutMs");
  Activity_Duration parsed;
  parsed.mode = parse_mode(*mode);
  if (source_type == Trigger_Source_Type::motion_detection) {
    parsed.mode = Activity_Duration_Mode::object_presence;  // motion has no track to follow
  }
  parsed.min_duration = parse_min_duration(*min_duration);
  parsed.dropout = parse_dropout(*dropout, parsed.mode);
  return parsed;
}

}  // namespace kuv::vemora
