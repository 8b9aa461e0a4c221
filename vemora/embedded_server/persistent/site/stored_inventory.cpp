// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/stored_inventory.h"

#include <map>
#include <utility>
#include <vector>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/site/inventory_rows.h"

namespace kuv::vemora::embedded_server {
namespace {

template <class Row>
std::uint64_t count(odb::database& database) {
  std::uint64_t number = 0;
  for_each_row<Row>(database, "id", [&number](const Row&) { ++number; });
  return number;
}

template <class Record>
std::vector<Record> load_records(odb::database& database) {
  std::vector<Record> records;
  for_each_row<Record>(database, "id", [&](const Record& row) { records.push_back(row); });
  sort_by_id(records);
  return records;
}

/// Calls `take` with each row that belongs to one of the records, and that record; `id_of` answers
/// the record that a row belongs to.
template <class Row, class Record, class Id_Of, class Take>
void for_each_row_of(odb::database& database, const char* order_by, std::vector<Record>& records,
                     Id_Of id_of, Take take) {
  std::map<std::uint64_t, Record*> by_id;
  for (Record& record : records) {
    by_id.emplace(record.id, &record);
  }
  for_each_row<Row>(database, order_by, [&](const Row& row) {
    const auto found = by_id.find(id_of(row));
    if (found != by_id.end()) {
      take(row, *found->second);
    }
  });
}

template <class Row, class Record>
void load_tags(odb::database& database, std::vector<Record>& records) {
  for_each_row_of<Row>(
      database, "record_id, name", records, [](const Row& row) { return row.key.record_id; },
      [](const Row& row, Record& record) { record.tags[row.key.name].value = row.value; });
}

std::vector<server> read_servers(odb::database& database) {
  std::vector<server> servers = load_records<server>(database);
  load_tags<rows::Server_Tag>(database, servers);
  return servers;
}

void load_capabilities(odb::database& database, std::vector<Inventory::Camera>& cameras) {
  std::map<std::uint64_t, std::string> texts;
  for_each_row<rows::Capability_Text>(
      database, "id", [&](const rows::Capability_Text& row) { texts.emplace(row.id, row.text); });
  for_each_row_of<rows::Camera_Capability>(
      database, "camera_id", cameras,
      [](const rows::Camera_Capability& row) { return row.camera_id; },
      [&](const rows::Camera_Capability& row, Inventory::Camera& record) {
        const auto text = texts.find(row.document_id);
        if (text != texts.end()) {
          record.capabilities = text->second;
        }
      });
}

std::vector<Inventory::Camera> read_cameras_of(odb::database& database) {
  std::vector<Inventory::Camera> cameras;
  for_each_row<camera>(database, "id", [&](const camera& row) {
    Inventory::Camera record;
    record.id = row.id;
    record.name = row.name;
    record.object_detection = row.object_detection;
    record.motion_detection = row.motion_detection;
    cameras.push_back(std::move(record));
  });
  sort_by_id(cameras);
  load_tags<rows::Camera_Tag>(database, cameras);
  load_capabilities(database, cameras);
  return cameras;
}

std::vector<Inventory::Subscription> read_generic_subscriptions(odb::database& database) {
  std::vector<Inventory::Subscription> subscriptions;
  for_each_row<rows::Subscription>(database, "id", [&](const rows::Subscription& row) {
    if (is_generic(row)) {
      Inventory::Subscription record;
      record.id = row.id;
      record.name = row.name;
      record.category_id = row.category_id;
      subscriptions.push_back(std::move(record));
    }
  });
  sort_by_id(subscriptions);
  load_tags<rows::Subscription_Tag>(database, subscriptions);
  for_each_row_of<rows::Subscription_Camera>(
      database, "record_id, linked_id", subscriptions,
      [](const rows::Subscription_Camera& row) { return row.key.record_id; },
      [](const rows::Subscription_Camera& row, Inventory::Subscription& record) {
        record.camera_ids.insert(row.key.linked_id);
      });
  return subscriptions;
}

}  // namespace

Inventory_Counts count_inventory(const std::shared_ptr<Database>& database) {
  Inventory_Counts counts;
  counts.object_types = load_object_types(database).size();
  return read(database, [&](Site_Index&) {
    odb::database& odb = database->engine().odb();
    counts.servers = count<server>(odb);
    counts.cameras = count<camera>(odb);
    counts.schedules = count<schedule>(odb);
    counts.categories = count<metadata_event_category>(odb);
    for_each_row<rows::Subscription>(odb, "id", [&](const rows::Subscription& row) {
      counts.subscriptions += is_generic(row) ? 1 : 0;
    });
    return counts;
  });
}

Inventory load_inventory(const std::shared_ptr<Database>& database) {
  Inventory inventory;
  inventory.object_types = load_object_types(database);
  return read(database, [&](Site_Index&) {
    odb::database& odb = database->engine().odb();
    inventory.servers = read_servers(odb);
    inventory.cameras = read_cameras_of(odb);
    inventory.schedules = load_records<schedule>(odb);
    inventory.categories = load_records<metadata_event_category>(odb);
    inventory.subscriptions = read_generic_subscriptions(odb);
    return std::move(inventory);
  });
}

std::vector<server> load_servers(const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index&) { return read_servers(database->engine().odb()); });
}

std::vector<schedule> load_schedules(const std::shared_ptr<Database>& database) {
  return read(database,
              [&](Site_Index&) { return load_records<schedule>(database->engine().odb()); });
}

std::vector<metadata_event_category> load_categories(const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index&) {
    return load_records<metadata_event_category>(database->engine().odb());
  });
}

}  // namespace kuv::vemora::embedded_server
