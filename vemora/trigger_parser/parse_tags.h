// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// Puts the filters of a trigger from its "tags" object in the place of empty ones; a filter that
/// is null or absent stays empty. What the tags library throws for one reaches the caller, unless
/// it is told to a sink.
void parse_tags(const Member& tags, Trigger_Config::Tags& parsed, Faults& faults);

}  // namespace kuv::vemora
