#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/commands/pass_command.h"
#include "tools/vemora-triggers/render/pass.h"

namespace kuv::vemora::tools {
namespace {

Exit_Status apply(const Options& options, const Trigger_Documents& documents) {
  return run_pass(
      options, "applying",
      [&](auto& host) { return host.apply(documents.config(), documents.mapping()); },
      [&](const auto& fault) { return documents.locate(fault); });
}

}  // namespace

Exit_Status apply(const Options& options, const std::string& config_path,
                  const std::string& mapping_path) {
  try {
    return apply(options, Trigger_Documents(options, config_path, mapping_path));
  } catch (const Unreadable_Document& unreadable) {
    print_no_pass(options, unreadable.located());
    return exit_rejected;
  }
}

}  // namespace kuv::vemora::tools
