// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/operations/explain/configured_trigger.h"
#include "vemora/operations/site/reason.h"

namespace kuv::vemora::operations {

/// Why the rules do not make a trigger active today; nothing where they do.
Reasons reasons_of_inactivity(const Site_View& site, const Configured_Trigger& trigger);

/// Why a pass fails to store an active trigger, or something of it.
Reason reason_of_failure(const Site_View& site, std::uint64_t trigger_id);

}  // namespace kuv::vemora::operations
