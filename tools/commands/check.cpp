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
  const Trigger_Documents documents(options, config_path, mapping_path);
  embedded_server::Trigger_Host host(embedded_server::Database::open(options.database),
                                     options.server_id);
  const auto found = host.check(documents.config(), documents.mapping());
  if (found.empty()) {
    print_valid(options);
    return exit_done;
  }
  print_faults(options, found.size(),
               [&](std::size_t number) { return documents.locate(found[number]); });
  return exit_rejected;
}

}  // namespace kuv::vemora::tools
