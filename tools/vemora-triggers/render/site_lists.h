// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/embedded_server/persistent/inventory.h"

namespace kuv::vemora::tools {

// What a site has besides its triggers. Lists are in the order of a column, if one is named.

void print_servers(const Options& options, const std::vector<server>& records,
                   const std::optional<std::size_t>& sort_column);
void print_schedules(const Options& options, const std::vector<schedule>& records,
                     const std::optional<std::size_t>& sort_column);
void print_object_types(const Options& options,
                        const std::map<std::string, std::set<std::string>>& types,
                        const std::optional<std::size_t>& sort_column);

/// A document that `init` takes: with --json on one line and in ASCII; otherwise indented, with all
/// other bytes as they are stored.
void print_inventory(const Options& options, const embedded_server::Inventory& inventory);

}  // namespace kuv::vemora::tools
