#include <fmt/format.h>

#include <cstdint>

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

std::string describe(const std::optional<Milliseconds>& duration) {
  return duration ? fmt::format("{}{}", duration->count(), "ms") : "default";
}

}  // namespace

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
              describe(parsed.max_latency), describe(parsed.digest_cooldown),
              describe(parsed.ack_timeout), describe(parsed.nack_delay));
  return parsed;
}

}  // namespace kuv::vemora
