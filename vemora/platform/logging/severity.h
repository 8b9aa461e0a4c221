// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

namespace kuv::logging {

/// How much a line matters; a filter lets through a level and everything above it.
enum class severity_level : std::int32_t {
  trace = 0,
  debug = 1,  ///< detail that is normally hidden
  detail = 2,
  info = 3,  ///< progress
  warning = 4,
  error = 5,  ///< a failure that was survived
  fatal = 6,
};

}  // namespace kuv::logging
