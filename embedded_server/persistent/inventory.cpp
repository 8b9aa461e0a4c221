#include "vemora/embedded_server/persistent/inventory.h"

#include <unordered_map>

#include "embedded_server/persistent/index/row_reader.h"
#include "embedded_server/persistent/pass/join_pass.h"
#include "records-odb.h"
#include "rows-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Creates a row, or replaces the one with its key.
template <class Row, class Key>
void put(odb::database& database, const Key& key, const Row& row) {
  Row present;
  if (database.find(key, present)) {
    database.update(row);
  } else {
    database.persist(row);
  }
}

template <class Row>
void replace_tags(odb::database& database, std::uint64_t record_id, const Tag_Map& tags) {
  database.erase_query<Row>(odb::query<Row>::key.record_id == record_id);
  for (const auto& [name, info] : tags) {
    Row row;
    row.key = {record_id, name};
    row.value = info.value;
    database.persist(row);
  }
}

/// Gives each capability text a document, the same to the same text.
class Capability_Documents {
 public:
  explicit Capability_Documents(odb::database& database) : database_(database) {
    for_each_row<rows::Capability_Text>(database, "id", [this](const rows::Capability_Text& row) {
      ids_.emplace(row.text, row.id);
      next_id_ = row.id + 1;
    });
  }

  void assign(std::uint64_t camera_id, const std::string& text) {
    if (text.empty()) {
      database_.erase_query<rows::Camera_Capability>(
          odb::query<rows::Camera_Capability>::camera_id == camera_id);
      return;
    }
    rows::Camera_Capability row;
    row.camera_id = camera_id;
    row.document_id = id_of(text);
    put(database_, camera_id, row);
  }

  void delete_unused() {
    database_.execute(
        "DELETE FROM capability_document WHERE id NOT IN "
        "(SELECT document_id FROM camera_capability)");
  }

 private:
  std::uint64_t id_of(const std::string& text) {
    const auto [place, is_new] = ids_.try_emplace(text, next_id_);
    if (is_new) {
      rows::Capability_Text row;
      row.id = next_id_++;
      row.text = text;
      database_.persist(row);
    }
    return place->second;
  }

  odb::database& database_;
  std::unordered_map<std::string, std::uint64_t> ids_;
  std::uint64_t next_id_ = 1;
};

void store_servers(odb::database& database, const std::vector<server>& servers) {
  for (const server& record : servers) {
    put(database, record.id, record);
    replace_tags<rows::Server_Tag>(database, record.id, record.tags);
  }
}

void store_cameras(odb::database& database, const std::vector<Inventory::Camera>& cameras) {
  Capability_Documents capabilities(database);
  for (const Inventory::Camera& given : cameras) {
    camera record;
    record.id = given.id;
    record.name = given.name;
    record.object_detection = given.object_detection;
    record.motion_detection = given.motion_detection;
    put(database, record.id, record);
    replace_tags<rows::Camera_Tag>(database, given.id, given.tags);
    capabilities.assign(given.id, given.capabilities);
  }
  capabilities.delete_unused();
}

template <class Record>
void store_plain(odb::database& database, const std::vector<Record>& records) {
  for (const Record& record : records) {
    put(database, record.id, record);
  }
}

void store_subscription(odb::database& database, const Inventory::Subscription& given) {
  rows::Subscription row;
  row.id = given.id;
  row.name = given.name;
  row.category_id = given.category_id;
  put(database, row.id, row);
  replace_tags<rows::Subscription_Tag>(database, given.id, given.tags);
  using Query = odb::query<rows::Subscription_Camera>;
  database.erase_query<rows::Subscription_Camera>(Query::key.record_id == given.id);
  for (const std::uint64_t camera_id : given.camera_ids) {
    database.persist(rows::Subscription_Camera{{given.id, camera_id}});
  }
}

void store_object_type(odb::database& database, const std::string& name,
                       const std::set<std::string>& types) {
  database.erase_query<rows::Meta_Type>(odb::query<rows::Meta_Type>::key.name == name);
  for (const std::string& type : types) {
    database.persist(rows::Meta_Type{{name, type}});
  }
}

std::map<std::string, std::set<std::string>> read_object_types(odb::database& database) {
  std::map<std::string, std::set<std::string>> types;
  for_each_row<rows::Meta_Type>(database, "name, type", [&](const rows::Meta_Type& row) {
    types[row.key.name].insert(row.key.type);
  });
  return types;
}

}  // namespace

Inventory_References load_inventory_references(const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index&) {
    odb::database& odb = database->engine().odb();
    Inventory_References references;
    for_each_row<camera>(odb, "id",
                         [&](const camera& row) { references.camera_ids.insert(row.id); });
    for_each_row<metadata_event_category>(odb, "id", [&](const metadata_event_category& row) {
      references.category_ids.insert(row.id);
    });
    for_each_row<rows::Subscription>(odb, "id", [&](const rows::Subscription& row) {
      if (row.camera_id || row.onvif_topic) {
        references.topic_subscription_ids.insert(row.id);
      }
    });
    references.object_types = read_object_types(odb);
    return references;
  });
}

std::map<std::string, std::set<std::string>> load_object_types(
    const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index&) { return read_object_types(database->engine().odb()); });
}

void store_inventory(const std::shared_ptr<Database>& database, const Inventory& inventory) {
  write(database, [&](Site_Index&) {
    odb::database& odb = database->engine().odb();
    store_servers(odb, inventory.servers);
    store_cameras(odb, inventory.cameras);
    store_plain(odb, inventory.schedules);
    store_plain(odb, inventory.categories);
    for (const Inventory::Subscription& subscription : inventory.subscriptions) {
      store_subscription(odb, subscription);
    }
    for (const auto& [name, types] : inventory.object_types) {
      store_object_type(odb, name, types);
    }
  });
}

}  // namespace kuv::vemora::embedded_server
