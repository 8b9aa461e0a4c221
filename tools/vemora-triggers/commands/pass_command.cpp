// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/commands/pass_command.h"

#include <optional>

#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/pass.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/operations/warnings/warnings.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Kept;
using embedded_server::Pass_Outcome;
using embedded_server::Trigger_Host;

/// To be printed if the outcome, which says more, is lost.
const char* sentence(Kept kept) {
  switch (kept) {
    case Kept::nothing:
      break;
    case Kept::not_known:
      return "It is not known whether what the pass wrote was kept.";
    case Kept::records:
      return "The records of the pass are committed. Repeat the command to store its documents "
             "too.";
    case Kept::records_perhaps_more:
      return "The records of the pass are committed; it is not known whether its documents are "
             "stored too.";
    case Kept::everything:
      return "The pass is done, and all of its changes are stored.";
  }
  return "";
}

/// Records in its destructor what is stored of the pass, also if something was thrown.
class Noted_Pass {
 public:
  explicit Noted_Pass(const Trigger_Host& host) : host_(host) {}
  ~Noted_Pass() { note_stored(sentence(host_.kept())); }
  Noted_Pass(const Noted_Pass&) = delete;
  Noted_Pass& operator=(const Noted_Pass&) = delete;

 private:
  const Trigger_Host& host_;
};

Pass_Outcome outcome_of(const Options& options, const char* doing, const Run_Pass& run,
                        const std::string& command) {
  const Progress_Line progress(doing);
  const auto database = embedded_server::Database::open(options.database);
  Trigger_Host host(database, options.server_id,
                    {nullptr,
                     nullptr,
                     operations::warn_of_documents(database, options.server_id),
                     options.strict,
                     !options.allow_mass_deletion,
                     {command, "", options.note}});
  const Noted_Pass noted(host);
  return run(host, database);
}

}  // namespace

Exit_Status run_pass(const Options& options, const char* doing, const Run_Pass& run,
                     const Locate_Fault& locate, const std::string& command) {
  const Pass_Outcome outcome = outcome_of(options, doing, run, command);
  std::optional<Located_Fault> rejection;
  if (outcome.rejection) {
    rejection = locate(*outcome.rejection);
  }
  print_outcome(options, outcome, rejection, located(outcome.warnings, locate));
  return exit_status_of(outcome);
}

}  // namespace kuv::vemora::tools
