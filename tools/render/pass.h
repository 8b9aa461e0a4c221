#pragma once

#include "tools/exit_status.h"
#include "tools/options.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

Exit_Status exit_status_of(const embedded_server::Pass_Outcome& outcome);

/// Prints what became of a pass.
void print_outcome(const Options& options, const embedded_server::Pass_Outcome& outcome);

}  // namespace kuv::vemora::tools
