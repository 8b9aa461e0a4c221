// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

using Run_Pass = std::function<embedded_server::Pass_Outcome(
    embedded_server::Trigger_Host&, const std::shared_ptr<embedded_server::Database>&)>;
using Locate_Fault = std::function<Located_Fault(const embedded_server::Check_Fault&)>;

/// Runs a pass on the database and prints its outcome. If this throws, stored_note() says what is
/// stored. `command` is what the history calls it, if that is not the name of the pass.
Exit_Status run_pass(const Options& options, const char* doing, const Run_Pass& run,
                     const Locate_Fault& locate, const std::string& command = "");

}  // namespace kuv::vemora::tools
