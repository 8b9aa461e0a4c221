// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <string>

#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/operations/plan/plan.h"

namespace kuv::vemora::tools {

/// Prints what a pass would do. `kept_in` is the file that the plan was written to; empty: none.
void print_plan(const Options& options, operations::Plan plan,
                const std::optional<Located_Fault>& place, const Fault_List& warnings,
                const std::string& kept_in);

}  // namespace kuv::vemora::tools
