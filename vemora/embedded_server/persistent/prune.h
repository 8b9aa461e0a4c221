// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/deletions.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// What a prune removes because the inventory does not name it. Every list ascends.
struct Pruned_Records {
  /// A record that is removed, or kept.
  struct Record {
    std::uint64_t id = 0;
    std::string name;
  };
  /// A camera that is removed, with what depends on it.
  struct Camera : Record {
    std::size_t topic_subscriptions = 0;  ///< removed with it
    bool has_detection = false;           ///< its detection record is removed with it
  };

  std::vector<Record> servers;
  std::vector<Camera> cameras;
  std::vector<Record> schedules;
  std::vector<Record> categories;
  std::vector<Record> subscriptions;  ///< generic ones
  std::vector<std::string> object_types;

  // Also those of cameras that were not in the site any more.
  std::size_t topic_subscriptions = 0;
  std::size_t eta_cameras = 0;

  std::vector<Record> kept_servers;  ///< not named, and kept all the same
};

/// Stores an inventory like store_inventory(), and removes in the same transaction what it does not
/// name: servers, but for `server_id` and the one that the database belongs to; cameras, with their
/// topic subscriptions and detection records; schedules, event categories, generic subscriptions
/// and general object types. Links to what is removed go with it, and cameras that are removed are
/// not pending any more. Triggers stay as they are until the next pass.
///
/// `permit` is asked before the first write, if anything would be removed; nothing is written if it
/// answers false, or if `read` answers null. Throws Database_Error.
VEMORA_API Pruned_Records prune_to_inventory(const std::shared_ptr<Database>& database,
                                             std::uint64_t server_id,
                                             const std::function<const Inventory*()>& read,
                                             const Permit_Deletions& permit);

}  // namespace kuv::vemora::embedded_server
