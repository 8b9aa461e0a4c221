// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/embedded_server/persistent/history.h"

namespace kuv::vemora::tools {

void print_history(const Options& options,
                   const std::vector<embedded_server::History_Entry>& entries);

/// One pass with all that is known of it.
void print_past_pass(const Options& options, const embedded_server::Past_Pass& past);

}  // namespace kuv::vemora::tools
