// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/commands/pass_command.h"
#include "tools/vemora-triggers/render/pass.h"
#include "vemora/operations/plan/plan_file.h"

namespace kuv::vemora::tools {
namespace {

Exit_Status apply(const Options& options, const Trigger_Documents& documents,
                  const std::optional<operations::Kept_Plan>& plan = std::nullopt) {
  return run_pass(
      options, "applying",
      [&](auto& host, const auto& database) {
        const auto object =
            plan ? operations::require_site_of(*plan, database, options.server_id) : nullptr;
        return host.apply(documents.config(), documents.mapping(), object);
      },
      [&](const auto& fault) { return documents.locate(fault); });
}

/// Rejected like a document that cannot be read.
operations::Kept_Plan read_plan(const std::string& path) {
  try {
    return operations::Plan_File(path).read();
  } catch (const operations::Plan_File_Error& error) {
    throw Unreadable_Document{"plan", path, {error.what(), {}}, ""};
  }
}

Trigger_Documents documents_of(const operations::Kept_Plan& plan, const std::string& path) {
  return {path + " (configuration)", document_taken_before(plan.config), path + " (mapping)",
          plan.mapping ? std::make_optional(document_taken_before(*plan.mapping)) : std::nullopt};
}

template <class Command>
Exit_Status unless_unreadable(const Options& options, Command command) {
  try {
    return command();
  } catch (const Unreadable_Document& unreadable) {
    print_no_pass(options, unreadable.located());
    return exit_rejected;
  }
}

}  // namespace

Exit_Status apply(const Options& options, const std::string& config_path,
                  const std::string& mapping_path) {
  return unless_unreadable(options, [&] {
    return apply(options, Trigger_Documents(options, config_path, mapping_path));
  });
}

Exit_Status apply_plan(const Options& options, const std::string& path) {
  return unless_unreadable(options, [&] {
    const operations::Kept_Plan plan = read_plan(path);
    return apply(options, documents_of(plan, path), plan);
  });
}

}  // namespace kuv::vemora::tools
