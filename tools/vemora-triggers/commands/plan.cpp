// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/plan/plan.h"

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/commands/pass_command.h"
#include "tools/vemora-triggers/render/pass.h"
#include "tools/vemora-triggers/render/plan.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/operations/plan/plan_file.h"
#include "vemora/operations/warnings/warnings.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Pass_Outcome;
using operations::Plan;
using operations::Plan_File;

Plan plan_of(const Options& options, const Trigger_Documents& documents) {
  const Progress_Line progress("planning");
  const auto database = embedded_server::Database::open(options.database);
  const embedded_server::Trigger_Host host(
      database, options.server_id,
      {nullptr, nullptr, operations::warn_of_documents(database, options.server_id), options.strict,
       true});
  return make_plan(host, database, documents.config(), documents.mapping(),
                   operations::Site_Digest::wanted);
}

operations::Kept_Plan kept(const Options& options, const Trigger_Documents& documents,
                           const Plan& plan) {
  return {options.server_id, documents.config().text(),
          documents.mapping() != nullptr ? std::make_optional(documents.mapping()->text())
                                         : std::nullopt,
          plan.site_digest, plan.last_pass};
}

Exit_Status status_of(const Plan& plan, bool tells_changes) {
  const Exit_Status status = exit_status_of(plan.outcome);
  return tells_changes && status == exit_done && !plan.changes_nothing() ? exit_to_change : status;
}

Exit_Status plan(const Options& options, const Trigger_Documents& documents,
                 const Plan_Request& request) {
  const Plan_File file(request.out);
  if (!request.out.empty()) {
    file.require_replaceable();
  }
  const Plan made = plan_of(options, documents);
  const bool is_kept = !request.out.empty() && made.outcome.status == Pass_Outcome::Status::done;
  if (is_kept) {
    file.write(kept(options, documents, made));
  }
  const auto locate = [&](const auto& fault) { return documents.locate(fault); };
  std::optional<Located_Fault> place;
  if (made.outcome.rejection) {
    place = locate(*made.outcome.rejection);
  }
  const std::function<Located_Fault(const embedded_server::Check_Fault&)> locate_warning = locate;
  print_plan(options, made, place, located(made.outcome.warnings, locate_warning),
             is_kept ? request.out : "");
  return status_of(made, request.tells_changes);
}

}  // namespace

Exit_Status plan(const Options& options, const Plan_Request& request) {
  try {
    return plan(options, Trigger_Documents(options, request.config_path, request.mapping_path),
                request);
  } catch (const Unreadable_Document& unreadable) {
    print_no_pass(options, unreadable.located());
    return exit_rejected;
  }
}

}  // namespace kuv::vemora::tools
