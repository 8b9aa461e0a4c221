// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/diff.h"

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/operations/history/document_difference.h"

namespace kuv::vemora::tools {

Exit_Status diff(const Options& options, const Diff_Request& request) {
  const auto database = embedded_server::Database::open(options.database);
  try {
    const auto difference = operations::difference_of_documents(
        operations::documents_of_pass(database, request.before),
        request.after ? operations::documents_of_pass(database, *request.after)
                      : operations::documents_of_today(database));
    print_difference(options, request, difference);
    return request.tells_difference && !difference.is_empty() ? exit_to_change : exit_done;
  } catch (const operations::Missing_Pass& missing) {
    print_wrong_usage(options.json, missing.what());
    return exit_usage;
  }
}

}  // namespace kuv::vemora::tools
