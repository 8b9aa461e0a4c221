// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/diff_request.h"
#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/invocation/show_request.h"
#include "vemora/operations/match/event.h"

namespace kuv::vemora::tools {

// Each command prints its outcome to standard output and returns the exit status. It throws if a
// document cannot be read (Unreadable_Document) or the database fails (Database_Error).

/// With `prune`, what the inventory does not name is removed from the site.
Exit_Status init(const Options& options, const std::string& inventory_path, bool prune);

/// An empty mapping path stands for the stored mapping.
Exit_Status check(const Options& options, const std::string& config_path,
                  const std::string& mapping_path);
Exit_Status apply(const Options& options, const std::string& config_path,
                  const std::string& mapping_path);

/// Applies the documents of a plan that was kept, if the site is what it was then.
Exit_Status apply_plan(const Options& options, const std::string& path);

struct Plan_Request {
  std::string config_path;
  std::string mapping_path;    ///< empty: the stored mapping
  std::string out;             ///< where the plan is kept; empty: nowhere
  bool tells_changes = false;  ///< by the exit status
};
Exit_Status plan(const Options& options, const Plan_Request& request);

Exit_Status refresh(const Options& options);

/// The passes that changed something. Wrong usage if there was no such pass, or it is not kept.
Exit_Status history(const Options& options);
Exit_Status history_of_pass(const Options& options, std::uint64_t pass);
Exit_Status diff(const Options& options, const Diff_Request& request);

/// Applies the documents that were stored when a pass was over. Refused if they are not kept, wrong
/// usage if there was no such pass.
Exit_Status rollback(const Options& options, std::uint64_t pass);

/// What can be shown.
std::vector<std::string> things_to_show();

/// Wrong usage if the request makes no sense, or names a record that is not there.
Exit_Status show(const Options& options, const Show_Request& request);

/// Wrong usage if the site does not have the camera.
Exit_Status explain(const Options& options, std::uint64_t trigger_id,
                    std::optional<std::uint64_t> camera_id);

/// Wrong usage if the site does not have the camera, or the generic subscription.
Exit_Status match(const Options& options, const operations::Event& event);
Exit_Status match_events(const Options& options, const std::string& path);

/// Beside what it would be with these documents; an empty mapping path stands for the stored one.
Exit_Status match_against(const Options& options, const std::string& path,
                          const std::string& config_path, const std::string& mapping_path);

/// Wrong usage if the database is not a file.
Exit_Status backup(const Options& options, const std::string& file);
Exit_Status restore(const Options& options, const std::string& file);

}  // namespace kuv::vemora::tools
