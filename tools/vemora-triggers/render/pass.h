// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

Exit_Status exit_status_of(const embedded_server::Pass_Outcome& outcome);

/// An outcome as a JSON object, all but its warnings.
Json::Value outcome_to_json(const embedded_server::Pass_Outcome& outcome,
                            const std::optional<Located_Fault>& rejection);

/// Prints such an object, and the warnings as its last member.
void print_with_warnings(const Json::Value& answer, const Fault_List& warnings);

/// Prints for people the errors, warnings and remarks of an outcome.
void print_complaints(const embedded_server::Pass_Outcome& outcome,
                      const std::optional<Located_Fault>& rejection, const Fault_List& warnings);

/// Prints the outcome of a pass with its warnings and, if a document was rejected, the location of
/// the fault.
void print_outcome(const Options& options, const embedded_server::Pass_Outcome& outcome,
                   const std::optional<Located_Fault>& rejection, const Fault_List& warnings = {});

/// Prints that there was no pass because a document could not be read.
void print_no_pass(const Options& options, const Located_Fault& fault);

/// Prints that a pass failed without an outcome and, unless `stored` is empty, what is stored.
void print_failed_pass(const Options& options, const std::string& message,
                       const std::string& stored);

}  // namespace kuv::vemora::tools
