#include <iostream>

#include "tools/commands/commands.h"
#include "tools/commands/input.h"
#include "tools/render/faults.h"
#include "tools/render/json.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {
namespace {

void print_valid(const Options& options) {
  if (!options.json) {
    std::cout << "Valid.\n";
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = true;
  answer["errors"] = Json::Value(Json::arrayValue);
  print_json(answer);
}

}  // namespace

Exit_Status check(const Options& options, const std::string& config_path,
                  const std::string& mapping_path) {
  const auto config = read_input("config", config_path);
  const auto mapping = read_optional_input("mapping", mapping_path);
  embedded_server::Trigger_Host host(embedded_server::Database::open(options.database),
                                     options.server_id);
  const auto found = host.check(config, pointer_to(mapping));
  if (!found) {
    print_valid(options);
    return exit_done;
  }
  const bool in_config = found->document == "config";
  const auto* const document = in_config ? &config : pointer_to(mapping);
  print_faults(options, {{found->document, in_config ? config_path : mapping_path, found->fault,
                          document != nullptr ? document->line(found->fault.location.line) : "",
                          found->index, found->id}});
  return exit_rejected;
}

}  // namespace kuv::vemora::tools
