// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The stored form of one configured trigger.
struct trigger {
  std::uint64_t id = 0;  ///< the trigger's id in the configuration; identity of the record
  std::string name;      ///< as it was configured
  std::set<Trigger_Mapping_Entry> schedules;  ///< when it is active; never null pointers
  std::set<Trigger_Source> sources;           ///< what fires it
};

}  // namespace kuv::vemora
