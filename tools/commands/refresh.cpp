#include "tools/commands/commands.h"
#include "tools/render/pass.h"
#include "tools/render/terminal.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

Exit_Status refresh(const Options& options) {
  embedded_server::Trigger_Host host(embedded_server::Database::open(options.database),
                                     options.server_id);
  const embedded_server::Pass_Outcome outcome = [&] {
    const Progress_Line progress("refreshing");
    return host.refresh();
  }();
  print_outcome(options, outcome);
  return exit_status_of(outcome);
}

}  // namespace kuv::vemora::tools
