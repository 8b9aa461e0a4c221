// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

#include "vemora/platform/utils/time.h"

namespace kuv::vemora {

/// When something is active. Triggers refer to schedules; the trigger manager never writes one.
struct schedule {
  std::uint64_t id = 0;  ///< identity of the record
  std::string name;      ///< for people
  bool usable = false;   ///< false: a trigger that refers to it is inactive
};

}  // namespace kuv::vemora
