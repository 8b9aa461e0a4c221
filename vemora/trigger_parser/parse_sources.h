// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <set>

#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/source_types.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The sources of a trigger from its "sources" array; empty when each of them was dropped.
std::set<Trigger_Source> parse_sources(const Member& sources, Source_Types& types, Faults& faults);

}  // namespace kuv::vemora
