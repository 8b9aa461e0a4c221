// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/operations/explain/explain.h"
#include "vemora/operations/site/site_view.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora::operations {

/// Whether nothing that happens is told to the trigger.
bool is_silent(const Explanation& explained);

/// Why an active trigger is silent: its cameras' and subscriptions' reasons, each code once.
Reasons reasons_of_silence(const Site_View& site, const Trigger_Config& config,
                           const Explanation& explained);

}  // namespace kuv::vemora::operations
