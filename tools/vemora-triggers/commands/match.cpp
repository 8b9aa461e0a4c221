#include "vemora/operations/match/match.h"

#include <fmt/format.h>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/match.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/operations/match/event_reader.h"

namespace kuv::vemora::tools {

Exit_Status match(const Options& options, const operations::Event& event) {
  const auto database = embedded_server::Database::open(options.database);
  const operations::Match match = operations::match(database, options.server_id, event);
  if (!match.is_known) {
    const bool of_camera = event.kind != operations::Event::Kind::subscription;
    print_wrong_usage(options.json,
                      fmt::format("The site has no {} {}.",
                                  of_camera ? "camera" : "generic subscription", event.place));
    return exit_usage;
  }
  print_match(options, match);
  return exit_done;
}

Exit_Status match_events(const Options& options, const std::string& path) {
  const auto database = embedded_server::Database::open(options.database);
  try {
    operations::Event_Reader events(path);
    const Progress_Line progress("Reading events");
    print_event_counts(options, operations::count_events(database, options.server_id,
                                                         [&events] { return events.next(); }));
  } catch (const operations::Event_Error& error) {
    throw Unreadable_Document{"events", path, {error.what(), error.location}, error.line};
  }
  return exit_done;
}

}  // namespace kuv::vemora::tools
