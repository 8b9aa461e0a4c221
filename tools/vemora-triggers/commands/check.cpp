// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <functional>
#include <vector>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/operations/warnings/warnings.h"

namespace kuv::vemora::tools {

Exit_Status check(const Options& options, const std::string& config_path,
                  const std::string& mapping_path) {
  const Trigger_Documents& documents =
      Trigger_Documents::read_for_good(options, config_path, mapping_path);
  const auto database = embedded_server::Database::open(options.database);
  embedded_server::Trigger_Host host(
      database, options.server_id,
      {nullptr, nullptr, operations::warn_of_documents(database, options.server_id)});
  std::vector<embedded_server::Document_Warning> warnings;
  const auto found = host.check(documents.config(), documents.mapping(), warnings);
  const std::function<Located_Fault(const embedded_server::Check_Fault&)> locate =
      [&](const auto& fault) { return documents.locate(fault); };
  print_check(options,
              {found.size(), [&](std::size_t number) { return documents.locate(found[number]); }},
              located(warnings, locate));
  const bool rejected = !found.empty() || (options.strict && !warnings.empty());
  return rejected ? exit_rejected : exit_done;
}

}  // namespace kuv::vemora::tools
