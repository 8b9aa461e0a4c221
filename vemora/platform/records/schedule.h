#pragma once

#include <cstdint>
#include <string>

#include "vemora/platform/utils/time.h"

namespace kuv::vemora {

/// When something is active. Triggers refer to schedules; the trigger manager never writes one.
struct schedule {
  std::uint64_t id = 0;
  std::string name;
  bool usable = false;  ///< false: a trigger that refers to it is inactive
};

}  // namespace kuv::vemora
