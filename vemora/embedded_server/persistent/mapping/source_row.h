// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora::rows {

/// The row of a source that has that position among the sources of its trigger.
Trigger_Source_Row to_row(std::uint64_t trigger_id, std::uint32_t position,
                          const Trigger_Source& source);

/// The source that a row stands for.
Trigger_Source to_source(const Trigger_Source_Row& row);

}  // namespace kuv::vemora::rows
