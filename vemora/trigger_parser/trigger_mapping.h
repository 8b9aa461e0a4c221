// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The schedules that the mapping associates with each trigger, by trigger id. An empty optional
/// marks a trigger of which some association names a schedule that cannot be used.
using Trigger_Mapping = std::map<std::uint64_t, std::optional<std::set<Trigger_Mapping_Entry>>>;

}  // namespace kuv::vemora
