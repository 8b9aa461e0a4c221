// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/match.h"

#include <fmt/format.h>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/match.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/host/trigger_host.h"
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

namespace {

/// Reads the events of the file for as long as `use` runs.
template <class Use>
void with_events(const std::string& path, Use use) {
  try {
    operations::Event_Reader events(path);
    const Progress_Line progress("Reading events");
    use([&events] { return events.next(); });
  } catch (const operations::Event_Error& error) {
    throw Unreadable_Document{"events", path, {error.what(), error.location}, error.line};
  }
}

}  // namespace

Exit_Status match_events(const Options& options, const std::string& path) {
  const auto database = embedded_server::Database::open(options.database);
  with_events(path, [&](const operations::Event_Source& next) {
    print_event_counts(options, operations::count_events(database, options.server_id, next));
  });
  return exit_done;
}

Exit_Status match_against(const Options& options, const std::string& path,
                          const std::string& config_path, const std::string& mapping_path) {
  const Trigger_Documents documents(options, config_path, mapping_path);
  const auto database = embedded_server::Database::open(options.database);
  const auto found = embedded_server::Trigger_Host(database, options.server_id)
                         .check(documents.config(), documents.mapping());
  if (!found.empty()) {
    print_faults(options, {found.size(),
                           [&](std::size_t number) { return documents.locate(found[number]); }});
    return exit_rejected;
  }
  with_events(path, [&](const operations::Event_Source& next) {
    print_compared_counts(
        options, operations::compare_events(database, options.server_id, documents.config(),
                                            documents.mapping(), next));
  });
  return exit_done;
}

}  // namespace kuv::vemora::tools
