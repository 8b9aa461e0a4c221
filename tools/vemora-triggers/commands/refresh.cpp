// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/pass_command.h"

namespace kuv::vemora::tools {

Exit_Status refresh(const Options& options) {
  return run_pass(
      options, "refreshing", [](auto& host, const auto&) { return host.refresh(); },
      [](const auto& fault) {
        return Located_Fault{fault.document, "", fault.fault, nullptr, "", fault.index, fault.id};
      });
}

}  // namespace kuv::vemora::tools
