#include <fmt/format.h>

#include <cstdint>
#include <optional>

#include "trigger_parser/validation.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

using Milliseconds = Notification_Properties::Milliseconds;

/// The product is taken in 32 bits and wraps: servers hold these settings as 32-bit milliseconds,
/// and documents with longer times are in use and mean what they have always meant.
std::optional<Milliseconds> parse_duration(const Json::Value& properties, const char* key,
                                           std::uint32_t milliseconds_per_unit) {
  const Json::Value& value = properties[key];
  if (value.isNull()) {
    return std::nullopt;
  }
  if (!value.isUInt()) {
    raise_validation_error(fmt::format("\"properties.{}\" must be an unsigned integer.", key));
  }
  return Milliseconds(static_cast<std::uint32_t>(value.asUInt()) * milliseconds_per_unit);
}

/// A setting as the log line shows it. It is formatted with the line and not before, so that a line
/// that nobody takes costs nothing.
struct Shown_Setting {
  const std::optional<Milliseconds>& duration;
};

}  // namespace
}  // namespace kuv::vemora

template <>
struct fmt::formatter<kuv::vemora::Shown_Setting> {
  constexpr auto parse(fmt::format_parse_context& context) { return context.begin(); }

  auto format(const kuv::vemora::Shown_Setting& setting, fmt::format_context& context) const {
    return setting.duration ? fmt::format_to(context.out(), "{}{}", setting.duration->count(), "ms")
                            : fmt::format_to(context.out(), "default");
  }
};

namespace kuv::vemora {

Notification_Properties Vemora_Trigger_Parser::parse_config_properties(
    const Json::Value& document) {
  Notification_Properties parsed;
  const Json::Value& properties = document["properties"];
  if (!properties.isNull()) {
    require(properties.isObject(), "\"properties\" must be a JSON object.");
    parsed.max_latency = parse_duration(properties, "notificationMaxLatencySecs", 1000);
    parsed.digest_cooldown = parse_duration(properties, "notificationDigestCooldownMins", 60000);
    parsed.ack_timeout = parse_duration(properties, "notificationAckTimeoutSecs", 1000);
    parsed.nack_delay = parse_duration(properties, "notificationNackDelayMs", 1);
  }
  logger_.log(kuv::logging::severity_level::debug,
              "Parsed trigger config properties | max_latency={} | digest_cooldown={} | "
              "ack_timeout={} | nack_delay={}",
              Shown_Setting{parsed.max_latency}, Shown_Setting{parsed.digest_cooldown},
              Shown_Setting{parsed.ack_timeout}, Shown_Setting{parsed.nack_delay});
  return parsed;
}

}  // namespace kuv::vemora
