// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <optional>

#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The "activityDuration" of a source of that type; nothing when it is null or absent.
std::optional<Activity_Duration> parse_activity_duration(const Member& activity,
                                                         Trigger_Source_Type source_type,
                                                         Faults& faults);

}  // namespace kuv::vemora
