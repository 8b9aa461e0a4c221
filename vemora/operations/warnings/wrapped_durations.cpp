// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/wrapped_durations.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>

#include "vemora/trigger_parser/notification_settings.h"

namespace kuv::vemora::operations {

void warn_of_wrapped_durations(const embedded_server::Read_Documents& documents,
                               Found_Warnings& found) {
  const Json::Value& properties = documents.config.value()["properties"];
  if (!properties.isObject()) {
    return;
  }
  for (const Notification_Setting& setting : notification_settings) {
    const Json::Value& value = properties[setting.key];
    if (!value.isUInt()) {
      continue;
    }
    const std::uint64_t meant = std::uint64_t{value.asUInt()} * setting.milliseconds_per_unit;
    const std::uint64_t held = setting.held(value.asUInt()).count();
    if (held != meant) {
      found.in_config(
          "duration-wraps", value, {},
          fmt::format("{} is too long for this setting and becomes {} ms; the longest is {}.",
                      value.asUInt(), held,
                      std::numeric_limits<std::uint32_t>::max() / setting.milliseconds_per_unit));
    }
  }
}

}  // namespace kuv::vemora::operations
