// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/operations/warnings/found_warnings.h"

namespace kuv::vemora::operations {

/// Warns of notification settings that are too long for what holds them.
void warn_of_wrapped_durations(const embedded_server::Read_Documents& documents,
                               Found_Warnings& found);

}  // namespace kuv::vemora::operations
