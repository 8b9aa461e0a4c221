// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <vector>

#include "vemora/operations/warnings/judged_triggers.h"
#include "vemora/operations/warnings/schedule_look_up.h"

namespace kuv::vemora::operations {

/// Warns of associations that do nothing for a trigger, or make it inactive.
void warn_of_mapping(const embedded_server::Read_Documents& documents, Schedule_Look_Up& schedules,
                     const std::vector<Judged_Trigger>& triggers, Found_Warnings& found);

}  // namespace kuv::vemora::operations
