// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/date_time/posix_time/posix_time_duration.hpp>
#include <cstdint>

#include "vemora/platform/export.h"

namespace kuv::vemora {

/// No constant of the compiler's: one object for all libraries of a process, set when the first of
/// them is loaded.
inline boost::posix_time::time_duration duration_of_microseconds(std::int64_t count) {
  return boost::posix_time::microseconds(count);
}

/// Settings of the server's stream pipeline that its libraries share.
struct VEMORA_API Stream_Pipeline {
  /// How long motion must last to count where nothing else was set.
  inline static const boost::posix_time::time_duration DEFAULT_MIN_MOTION_DURATION =
      duration_of_microseconds(5'000'000);
};

}  // namespace kuv::vemora
