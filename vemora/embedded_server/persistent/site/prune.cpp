// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/prune.h"

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/site/inventory_rows.h"

namespace kuv::vemora::embedded_server {
namespace {

using Named_Ids = std::set<std::uint64_t>;

template <class Named>
Named_Ids ids_of(const std::vector<Named>& records) {
  Named_Ids ids;
  for (const Named& record : records) {
    ids.insert(record.id);
  }
  return ids;
}

template <class Row>
std::vector<Row> rows_where(odb::database& database, const char* order_by,
                            const std::function<bool(const Row&)>& is_wanted) {
  std::vector<Row> rows;
  for_each_row<Row>(database, order_by, [&](const Row& row) {
    if (is_wanted(row)) {
      rows.push_back(row);
    }
  });
  return rows;
}

/// Finds what an inventory does not name, and removes it.
class Prune {
 public:
  Prune(Engine& engine, const Inventory& inventory, const Named_Ids& kept_servers)
      : engine_(engine),
        cameras_(ids_of(inventory.cameras)),
        schedules_(ids_of(inventory.schedules)) {
    find_servers(ids_of(inventory.servers), kept_servers);
    find_cameras();
    find_named(schedules_, removed_schedules_, removed_.schedules, deletions_.schedules);
    find_named(ids_of(inventory.categories), removed_categories_, removed_.categories,
               deletions_.categories);
    find_subscriptions(ids_of(inventory.subscriptions));
    find_detection();
    find_object_types(inventory.object_types);
  }

  const Deletions& deletions() const { return deletions_; }

  Pruned_Records take_removed() { return std::move(removed_); }

  void remove() {
    remove_links();
    Row_Writer& writer = engine_.rows();
    writer.erase(removed_eta_cameras_);
    writer.erase(removed_subscriptions_);
    writer.erase(removed_cameras_);
    writer.erase(removed_servers_);
    writer.erase(removed_schedules_);
    writer.erase(removed_categories_);
    writer.erase(removed_object_types_);
  }

 private:
  /// Finds the records of one kind that `wanted` lacks.
  template <class Row, class Named>
  void find_named(const Named_Ids& wanted, std::vector<Row>& rows, std::vector<Named>& removed,
                  Deletions::Of& counts) {
    for_each_row<Row>(engine_.odb(), "id", [&](const Row& row) {
      ++counts.stored;
      if (wanted.count(row.id) == 0) {
        rows.push_back(row);
        Named record;
        record.id = row.id;
        record.name = row.name;
        removed.push_back(std::move(record));
      }
    });
    counts.deleted = rows.size();
    sort_by_id(removed);
  }

  void find_servers(Named_Ids wanted, const Named_Ids& kept) {
    for (const server& row : rows_where<server>(engine_.odb(), "id", [&](const server& row) {
           return kept.count(row.id) != 0 && wanted.count(row.id) == 0;
         })) {
      removed_.kept_servers.push_back({row.id, row.name});
    }
    sort_by_id(removed_.kept_servers);
    wanted.insert(kept.begin(), kept.end());
    find_named(wanted, removed_servers_, removed_.servers, deletions_.servers);
  }

  void find_cameras() {
    find_named(cameras_, removed_cameras_, removed_.cameras, deletions_.cameras);
    for (std::size_t place = 0; place < removed_.cameras.size(); ++place) {
      place_of_camera_.emplace(removed_.cameras[place].id, place);
    }
  }

  Pruned_Records::Camera* removed_camera(std::uint64_t id) {
    const auto found = place_of_camera_.find(id);
    return found == place_of_camera_.end() ? nullptr : &removed_.cameras[found->second];
  }

  void find_subscriptions(const Named_Ids& generic) {
    for_each_row<rows::Subscription>(engine_.odb(), "id", [&](const rows::Subscription& row) {
      if (is_generic(row)) {
        find_generic(row, generic);
      } else if (row.camera_id) {
        find_on_camera(row);
      }
    });
    sort_by_id(removed_.subscriptions);
    deletions_.generic_subscriptions.deleted = removed_.subscriptions.size();
    deletions_.topic_subscriptions.deleted = removed_.topic_subscriptions;
  }

  void find_generic(const rows::Subscription& row, const Named_Ids& wanted) {
    ++deletions_.generic_subscriptions.stored;
    if (wanted.count(row.id) == 0) {
      removed_.subscriptions.push_back({row.id, row.name});
      note_removed(row);
    }
  }

  void find_on_camera(const rows::Subscription& row) {
    ++deletions_.topic_subscriptions.stored;
    if (cameras_.count(*row.camera_id) == 0) {
      ++removed_.topic_subscriptions;
      if (Pruned_Records::Camera* const its_camera = removed_camera(*row.camera_id)) {
        ++its_camera->topic_subscriptions;
      }
      note_removed(row);
    }
  }

  void note_removed(const rows::Subscription& row) {
    removed_subscriptions_.push_back(row);
    subscription_ids_.insert(row.id);
  }

  void find_detection() {
    for_each_row<rows::ETA_Camera>(engine_.odb(), "id", [&](const rows::ETA_Camera& row) {
      if (cameras_.count(row.camera_id) == 0) {
        removed_eta_cameras_.push_back(row);
        eta_camera_ids_.insert(row.id);
        if (Pruned_Records::Camera* const its_camera = removed_camera(row.camera_id)) {
          its_camera->has_detection = true;
        }
      }
    });
    removed_.eta_cameras = removed_eta_cameras_.size();
  }

  void find_object_types(const std::map<std::string, std::set<std::string>>& wanted) {
    std::set<std::string> names;
    for_each_row<rows::Meta_Type>(engine_.odb(), "name, type", [&](const rows::Meta_Type& row) {
      names.insert(row.key.name);
      if (wanted.count(row.key.name) == 0) {
        removed_object_types_.push_back(row);
      }
    });
    for (const std::string& name : names) {
      if (wanted.count(name) == 0) {
        removed_.object_types.push_back(name);
      }
    }
    deletions_.object_types = {removed_.object_types.size(), names.size()};
  }

  /// Takes away the rows that belong to what is removed, or lead to it.
  void remove_links() {
    const auto of_removed_server = [servers = ids_of(removed_.servers)](const auto& row) {
      return servers.count(row.key.record_id) != 0;
    };
    const auto of_removed_camera = [this](const auto& row) {
      return cameras_.count(row.key.record_id) == 0;
    };
    const auto of_removed_subscription = [this](const auto& row) {
      return subscription_ids_.count(row.key.record_id) != 0;
    };
    const auto of_removed_detection = [this](const auto& row) {
      return eta_camera_ids_.count(row.key.record_id) != 0;
    };
    remove_rows<rows::Server_Tag>("record_id, name", of_removed_server);
    remove_rows<rows::Camera_Tag>("record_id, name", of_removed_camera);
    remove_rows<rows::Camera_Capability>(
        "camera_id", [this](const auto& row) { return cameras_.count(row.camera_id) == 0; });
    remove_rows<rows::Pending_Camera>(
        "camera_id", [this](const auto& row) { return cameras_.count(row.camera_id) == 0; });
    remove_rows<rows::Subscription_Tag>("record_id, name", of_removed_subscription);
    remove_rows<rows::Subscription_Camera>("record_id, linked_id", [&](const auto& row) {
      return of_removed_subscription(row) || cameras_.count(row.key.linked_id) == 0;
    });
    remove_rows<rows::Subscription_Trigger>("record_id, linked_id", of_removed_subscription);
    remove_rows<rows::ETA_Camera_Trigger>("record_id, linked_id", of_removed_detection);
    remove_rows<rows::Trigger_Schedule>("record_id, linked_id", [this](const auto& row) {
      return schedules_.count(row.key.linked_id) == 0;
    });
  }

  template <class Row>
  void remove_rows(const char* key_columns, const std::function<bool(const Row&)>& is_removed) {
    engine_.rows().erase(rows_where<Row>(engine_.odb(), key_columns, is_removed));
  }

  Engine& engine_;
  Named_Ids cameras_;    ///< named by the inventory
  Named_Ids schedules_;  ///< named by the inventory
  Pruned_Records removed_;
  Deletions deletions_;
  std::vector<server> removed_servers_;
  std::vector<camera> removed_cameras_;
  std::map<std::uint64_t, std::size_t> place_of_camera_;  ///< in removed_.cameras, by id
  std::vector<schedule> removed_schedules_;
  std::vector<metadata_event_category> removed_categories_;
  std::vector<rows::Subscription> removed_subscriptions_;
  Named_Ids subscription_ids_;  ///< theirs
  std::vector<rows::ETA_Camera> removed_eta_cameras_;
  Named_Ids eta_camera_ids_;  ///< theirs
  std::vector<rows::Meta_Type> removed_object_types_;
};

}  // namespace

Pruned_Records prune_to_inventory(const std::shared_ptr<Database>& database,
                                  std::uint64_t server_id,
                                  const std::function<const Inventory*()>& read,
                                  const Permit_Deletions& permit) {
  return write(database, [&](Site_Index&) {
    const Inventory* const inventory = read();
    if (inventory == nullptr) {
      return Pruned_Records();
    }
    Named_Ids kept_servers{server_id};
    if (const std::optional<std::uint64_t> owner = database->owner()) {
      kept_servers.insert(*owner);
    }
    Prune prune(database->engine(), *inventory, kept_servers);
    if (!prune.deletions().empty() && !permit(prune.deletions())) {
      return Pruned_Records();
    }
    Pass::current(*database)->begin_writing();
    prune.remove();
    store_inventory(database, *inventory);
    return prune.take_removed();
  });
}

}  // namespace kuv::vemora::embedded_server
