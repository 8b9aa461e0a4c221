#include "tools/commands/pass_command.h"

#include <exception>
#include <optional>

#include "tools/render/pass.h"
#include "tools/render/terminal.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Pass_Outcome;

Pass_Outcome outcome_of(const Options& options, const char* doing, const Run_Pass& run) {
  const Progress_Line progress(doing);
  embedded_server::Trigger_Host host(embedded_server::Database::open(options.database),
                                     options.server_id);
  return run(host);
}

}  // namespace

Exit_Status run_pass(const Options& options, const char* doing, const Run_Pass& run,
                     const Locate_Fault& locate) {
  try {
    const Pass_Outcome outcome = outcome_of(options, doing, run);
    std::optional<Located_Fault> place;
    if (outcome.rejection) {
      place = locate(*outcome.rejection);
    }
    print_outcome(options, outcome, place);
    return exit_status_of(outcome);
  } catch (const std::exception& error) {
    print_failed_pass(options, error.what());
    return exit_failed;
  }
}

}  // namespace kuv::vemora::tools
