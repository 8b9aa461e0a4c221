#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

Exit_Status exit_status_of(const embedded_server::Pass_Outcome& outcome);

/// Prints what became of a pass, with its warnings; of a rejected document also where, as far as
/// that is known.
void print_outcome(const Options& options, const embedded_server::Pass_Outcome& outcome,
                   const std::optional<Located_Fault>& place, const Fault_List& warnings = {});

/// Prints that there was no pass, because a document could not be read.
void print_no_pass(const Options& options, const Located_Fault& fault);

/// Prints that a pass could not be run to an outcome, and what is stored all the same (empty:
/// nothing).
void print_failed_pass(const Options& options, const std::string& message,
                       const std::string& stored);

}  // namespace kuv::vemora::tools
