// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ratio>

namespace kuv::vemora {

/// Timing of the trigger notifications; what is unset is left to the pusher's own defaults.
struct Notification_Properties {
  /// As wide as servers hold such times.
  using Milliseconds = std::chrono::duration<std::uint32_t, std::milli>;

  std::optional<Milliseconds> max_latency;      ///< a notification waits no longer than this
  std::optional<Milliseconds> digest_cooldown;  ///< pause between two digests
  std::optional<Milliseconds> ack_timeout;      ///< without an answer for this long, send again
  std::optional<Milliseconds> nack_delay;       ///< pause after a refusal
};

}  // namespace kuv::vemora
