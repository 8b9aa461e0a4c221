// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/mass_deletion.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/prune.h"
#include "vemora/embedded_server/persistent/stored_inventory.h"

namespace kuv::vemora::tools {

/// What an inventory made of a site.
struct Stored_Site {
  const embedded_server::Inventory& inventory;
  std::optional<embedded_server::Pruned_Records> removed;  ///< nothing without a prune
  embedded_server::Inventory_Counts counts;                ///< of the site now
};

void print_stored_site(const Options& options, const Stored_Site& site, const Fault_List& warnings);

/// Prints that an inventory was refused, because it would remove this much.
void print_refused_prune(const Options& options,
                         const std::vector<embedded_server::Mass_Deletion>& mass_deletions,
                         const Fault_List& warnings);

}  // namespace kuv::vemora::tools
