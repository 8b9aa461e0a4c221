#include "tools/commands/commands.h"
#include "tools/commands/input.h"
#include "tools/render/pass.h"
#include "tools/render/terminal.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

Exit_Status apply(const Options& options, const std::string& config_path,
                  const std::string& mapping_path) {
  const auto config = read_input("config", config_path);
  const auto mapping = read_optional_input("mapping", mapping_path);
  embedded_server::Trigger_Host host(embedded_server::Database::open(options.database),
                                     options.server_id);
  const embedded_server::Pass_Outcome outcome = [&] {
    const Progress_Line progress("applying");
    return host.apply(config, pointer_to(mapping));
  }();
  print_outcome(options, outcome);
  return exit_status_of(outcome);
}

}  // namespace kuv::vemora::tools
