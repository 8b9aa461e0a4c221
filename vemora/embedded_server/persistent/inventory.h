// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora::embedded_server {

/// What belongs to a site besides its triggers.
struct Inventory {
  /// A camera, with its capabilities as a text.
  struct Camera {
    std::uint64_t id = 0;
    std::string name;
    Tag_Map tags;
    bool object_detection = false;
    bool motion_detection = false;
    std::string capabilities;  ///< JSON text of an object; empty: none
  };

  /// A generic subscription.
  struct Subscription {
    std::uint64_t id = 0;
    std::string name;
    std::optional<std::uint64_t> category_id;
    Tag_Map tags;
    std::set<std::uint64_t> camera_ids;
  };

  std::vector<server> servers;
  std::vector<Camera> cameras;
  std::vector<schedule> schedules;
  std::vector<metadata_event_category> categories;
  std::vector<Subscription> subscriptions;
  /// General object type to what it stands for, which may be general again.
  std::map<std::string, std::set<std::string>> object_types;
};

/// The ids and names that a new inventory may refer to, or run into.
struct Inventory_References {
  std::set<std::uint64_t> camera_ids;
  std::set<std::uint64_t> category_ids;
  std::set<std::uint64_t> topic_subscription_ids;  ///< not free for generic subscriptions
  std::map<std::string, std::set<std::string>> object_types;
};

// Each of these joins the pass that is open on its thread, as a repository operation does.

/// What the database holds already.
VEMORA_API Inventory_References
load_inventory_references(const std::shared_ptr<Database>& database);

/// A text that no record of a database can have.
struct Unstorable_Text {
  std::size_t place;  ///< its index in the list of texts
  std::string why;    ///< "it has ...", for people
};

/// Those of the texts that no record of this database can have.
VEMORA_API std::vector<Unstorable_Text> unstorable_texts(
    const std::shared_ptr<Database>& database, const std::vector<std::string_view>& texts);

/// What general object types stand for, as stored.
VEMORA_API std::map<std::string, std::set<std::string>> load_object_types(
    const std::shared_ptr<Database>& database);

/// Creates or replaces the records named, in one transaction; the others stay as they are, and so
/// do the triggers that records hold. A general object type is replaced as a whole. The inventory
/// is valid and its references are there. Waits for passes of other processes; throws
/// Database_Error.
VEMORA_API void store_inventory(const std::shared_ptr<Database>& database,
                                const Inventory& inventory);

/// The same of what `read` answers, nothing where that is null. What it reads of the database is in
/// the same transaction, so that no other process stores anything between the look and the writing.
VEMORA_API void store_inventory(const std::shared_ptr<Database>& database,
                                const std::function<const Inventory*()>& read);

}  // namespace kuv::vemora::embedded_server
