// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "vemora/trigger_parser/notification_properties.h"

namespace kuv::vemora {

/// One setting of "properties" in the configuration document.
struct Notification_Setting {
  /// What the setting becomes.
  using Milliseconds = Notification_Properties::Milliseconds;

  /// The product is taken in 32 bits and wraps: servers hold these settings as 32-bit milliseconds,
  /// and documents with longer times are in use and mean what they have always meant.
  constexpr Milliseconds held(std::uint32_t units) const {
    return Milliseconds(units * milliseconds_per_unit);
  }

  const char* key;                                               ///< in "properties"
  std::uint32_t milliseconds_per_unit;                           ///< the key says the unit
  std::optional<Milliseconds> Notification_Properties::*member;  ///< where it is held
};

/// In the order in which they are read.
inline constexpr std::array<Notification_Setting, 4> notification_settings{{
    {"notificationMaxLatencySecs", 1000, &Notification_Properties::max_latency},
    {"notificationDigestCooldownMins", 60000, &Notification_Properties::digest_cooldown},
    {"notificationAckTimeoutSecs", 1000, &Notification_Properties::ack_timeout},
    {"notificationNackDelayMs", 1, &Notification_Properties::nack_delay},
}};

}  // namespace kuv::vemora
