// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <ostream>
#include <string_view>

#include "vemora/platform/export.h"
#include "vemora/platform/logging/severity.h"

namespace kuv::logging {

/// The level of that name ("debug", "info", ...); nothing for another name.
VEMORA_API std::optional<severity_level> parse_severity(std::string_view name);

/// The name of a level.
VEMORA_API std::string_view name_of(severity_level severity);

/// From now on writes log lines of at least that level to `stream` as
/// "2026-01-31T12:00:00.123456 [error] Trigger_Manager: text", in local time, a fraction that is
/// zero left out, and what a terminal must not be sent spelled out (printable). A line under
/// Unstored_Lines begins "... [error] Trigger_Manager (nothing is stored): ". Absent: writes
/// none, and formats none. The stream must outlive the process's logging. Replaces what an earlier
/// call set up.
VEMORA_API void log_to(std::ostream& stream, std::optional<severity_level> least);

}  // namespace kuv::logging
