#include <iostream>
#include <optional>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/records.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/persistent/site_reader.h"

namespace kuv::vemora::tools {
namespace {

/// Prints a stored document byte for byte; on a terminal, with control characters as escapes.
void print_document(const Options& options, const std::optional<std::string>& text,
                    const char* name) {
  if (text) {
    print_text(*text);
  } else if (options.json) {
    std::cout << "{}\n";
  } else {
    std::cout << "No " << name << " is stored yet.\n";
  }
}

}  // namespace

Exit_Status show(const Options& options, const std::string& what) {
  const auto database = embedded_server::Database::open(options.database);
  database->require_owner(options.server_id);
  if (what == "triggers") {
    print_triggers(options, embedded_server::read_triggers(database));
  } else if (what == "subscriptions") {
    print_subscriptions(options, embedded_server::read_subscriptions(database));
  } else if (what == "detection") {
    print_detection(options, embedded_server::read_eta_cameras(database));
  } else if (what == "cameras") {
    print_cameras(options, embedded_server::read_cameras(database));
  } else if (what == "config") {
    print_document(options, embedded_server::read_documents(database).config, "configuration");
  } else {
    print_document(options, embedded_server::read_documents(database).mapping, "mapping");
  }
  return exit_done;
}

}  // namespace kuv::vemora::tools
