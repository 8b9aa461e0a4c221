// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <cstdint>
#include <optional>

#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/notification_settings.h"
#include "vemora/trigger_parser/require_configuration.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

using Milliseconds = Notification_Properties::Milliseconds;

std::optional<Milliseconds> parse_duration(const Json::Value& properties,
                                           const Notification_Setting& setting, Faults& faults) {
  const Json::Value& value = properties[setting.key];
  if (value.isNull()) {
    return std::nullopt;
  }
  if (!value.isUInt()) {
    faults.add(value, fmt::format("\"properties.{}\" must be an unsigned integer.", setting.key));
    return std::nullopt;
  }
  return setting.held(value.asUInt());
}

Notification_Properties parse_properties(const Json::Value& properties, Faults& faults) {
  Notification_Properties parsed;
  if (properties.isNull() ||
      !faults.require(properties.isObject(), properties, "\"properties\" must be a JSON object.")) {
    return parsed;
  }
  for (const Notification_Setting& setting : notification_settings) {
    parsed.*setting.member = parse_duration(properties, setting, faults);
  }
  return parsed;
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
  Faults faults;
  return parse_config_properties_(document, faults);
}

Notification_Properties Vemora_Trigger_Parser::parse_config_properties(const Json::Value& document,
                                                                       Fault_Sink& sink) {
  Faults faults(sink);
  return require_configuration(document, faults) ? parse_config_properties_(document, faults)
                                                 : Notification_Properties();
}

Notification_Properties Vemora_Trigger_Parser::parse_config_properties_(const Json::Value& document,
                                                                        Faults& faults) {
  const Notification_Properties parsed = parse_properties(document["properties"], faults);
  if (faults.count() > 0) {
    return parsed;
  }
  logger_.log(kuv::logging::severity_level::debug,
              "Parsed trigger config properties | max_latency={} | digest_cooldown={} | "
              "ack_timeout={} | nack_delay={}",
              Shown_Setting{parsed.max_latency}, Shown_Setting{parsed.digest_cooldown},
              Shown_Setting{parsed.ack_timeout}, Shown_Setting{parsed.nack_delay});
  return parsed;
}

}  // namespace kuv::vemora
