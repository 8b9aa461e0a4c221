// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>

#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

// What the database holds of a site besides its triggers. Each of these joins the pass that is open
// on its thread, or reads one consistent state of its own, and throws Database_Error.

/// How many records of each kind a site has.
struct Inventory_Counts {
  std::uint64_t servers = 0;
  std::uint64_t cameras = 0;
  std::uint64_t schedules = 0;
  std::uint64_t categories = 0;
  std::uint64_t subscriptions = 0;  ///< generic ones
  std::uint64_t object_types = 0;   ///< general ones
};

/// How many records there are of each kind.
VEMORA_API Inventory_Counts count_inventory(const std::shared_ptr<Database>& database);

/// All of it: store_inventory() makes the same site of it. Records ascend by id.
VEMORA_API Inventory load_inventory(const std::shared_ptr<Database>& database);

VEMORA_API std::vector<server> load_servers(const std::shared_ptr<Database>& database);
VEMORA_API std::vector<schedule> load_schedules(const std::shared_ptr<Database>& database);
VEMORA_API std::vector<metadata_event_category> load_categories(
    const std::shared_ptr<Database>& database);

}  // namespace kuv::vemora::embedded_server
