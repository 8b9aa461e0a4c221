// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>

namespace kuv::vemora::embedded_server {

/// After this time a person wants to know what a command waits for.
inline constexpr std::chrono::milliseconds long_wait = std::chrono::seconds(1);

/// Calls what on_long_wait() was given.
void tell_of_long_wait() noexcept;

}  // namespace kuv::vemora::embedded_server
