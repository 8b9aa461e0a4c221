// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/commands/pass_command.h"
#include "tools/vemora-triggers/render/pass.h"
#include "vemora/operations/history/pass_documents.h"

namespace kuv::vemora::tools {
namespace {

Trigger_Documents documents_of(const Options& options, std::uint64_t pass) {
  const auto database = embedded_server::Database::open(options.database);
  const operations::Document_Texts texts = operations::documents_of_pass(database, pass);
  return {fmt::format("pass {} (configuration)", pass), document_taken_before(texts.config),
          fmt::format("pass {} (mapping)", pass), document_taken_before(texts.mapping)};
}

Exit_Status refuse(const Options& options, const char* reason) {
  embedded_server::Pass_Outcome outcome;
  outcome.status = embedded_server::Pass_Outcome::Status::refused;
  outcome.errors = {{Directive_Config_Processing::Error::Category::failed_processing, reason}};
  print_outcome(options, outcome, std::nullopt);
  return exit_refused;
}

}  // namespace

Exit_Status rollback(const Options& options, std::uint64_t pass) {
  try {
    const Trigger_Documents documents = documents_of(options, pass);
    return run_pass(
        options, "rolling back",
        [&documents](auto& host, const auto&) {
          return host.apply(documents.config(), documents.mapping());
        },
        [&documents](const auto& fault) { return documents.locate(fault); },
        fmt::format("rollback {}", pass));
  } catch (const operations::Pass_Not_Kept& missing) {
    return refuse(options, missing.what());
  } catch (const operations::No_Such_Pass& missing) {
    print_wrong_usage(options.json, missing.what());
    return exit_usage;
  }
}

}  // namespace kuv::vemora::tools
