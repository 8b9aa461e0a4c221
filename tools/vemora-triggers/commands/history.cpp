// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history.h"

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/history.h"
#include "vemora/operations/history/pass_documents.h"

namespace kuv::vemora::tools {

Exit_Status history(const Options& options) {
  const auto database = embedded_server::Database::open(options.database);
  print_history(options, embedded_server::read_history(database));
  return exit_done;
}

Exit_Status history_of_pass(const Options& options, std::uint64_t pass) {
  const auto database = embedded_server::Database::open(options.database);
  try {
    print_past_pass(options, operations::find_past_pass(database, pass));
    return exit_done;
  } catch (const operations::Missing_Pass& missing) {
    print_wrong_usage(options.json, missing.what());
    return exit_usage;
  }
}

}  // namespace kuv::vemora::tools
