// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/explain.h"

#include <fmt/format.h>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/render/explain.h"
#include "tools/vemora-triggers/render/faults.h"

namespace kuv::vemora::tools {

Exit_Status explain(const Options& options, std::uint64_t trigger_id,
                    std::optional<std::uint64_t> camera_id) {
  const auto database = embedded_server::Database::open(options.database);
  const operations::Explanation explained =
      operations::explain(database, options.server_id, trigger_id, camera_id);
  if (camera_id && explained.cameras.empty()) {
    print_wrong_usage(options.json, fmt::format("The site has no camera {}.", *camera_id));
    return exit_usage;
  }
  print_explanation(options, explained);
  return exit_done;
}

}  // namespace kuv::vemora::tools
