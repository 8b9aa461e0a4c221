// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/inventory.h"

#include <fmt/format.h>

#include <map>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/row_changes.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/texts/characters.h"
#include "vemora/embedded_server/texts/json_nesting.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Makes `wanted` the rows that `is_replaced` says yes to. Changed ones go and come again: no index
/// that an engine could replace them by holds names of every length.
template <class Row, class Is_Replaced>
void replace_rows(Engine& engine, const char* key_columns, std::vector<Row> wanted,
                  Is_Replaced is_replaced) {
  std::vector<Row> present;
  for_each_row<Row>(engine.odb(), key_columns, [&](const Row& row) {
    if (is_replaced(row.key)) {
      present.push_back(row);
    }
  });
  Row_Changes<Row> changes;
  append_difference(std::move(present), std::move(wanted), changes);
  engine.rows().erase(changes.deleted);
  engine.rows().erase(changes.changed);
  engine.rows().insert(changes.changed);
  engine.rows().insert(changes.added);
}

/// The tags of records of one kind; a tag is in the order of its record and name.
template <class Row, class Records>
void replace_tags(Engine& engine, const Records& records) {
  std::set<std::uint64_t> ids;
  std::vector<Row> wanted;
  for (const auto& record : records) {
    ids.insert(record.id);
    for (const auto& [name, info] : record.tags) {
      Row row;
      row.key = {record.id, name};
      row.value = info.value;
      wanted.push_back(std::move(row));
    }
  }
  replace_rows<Row>(engine, "record_id, name", std::move(wanted),
                    [&ids](const rows::Tag_Key& key) { return ids.count(key.record_id) != 0; });
}

/// Gives each capability text a document, the same to the same text.
class Capability_Documents {
 public:
  explicit Capability_Documents(odb::database& database) {
    for_each_row<rows::Capability_Text>(database, "id", [this](const rows::Capability_Text& row) {
      ids_.emplace(row.text, row.id);
      next_id_ = row.id + 1;
    });
  }

  std::uint64_t id_of(const std::string& text) {
    const auto [place, is_new] = ids_.try_emplace(text, next_id_);
    if (is_new) {
      added_.push_back({next_id_++, text});
    }
    return place->second;
  }

  const std::vector<rows::Capability_Text>& added() const { return added_; }

 private:
  std::map<std::string, std::uint64_t> ids_;
  std::uint64_t next_id_ = 1;
  std::vector<rows::Capability_Text> added_;
};

/// What is stored must be readable ever after.
void require_readable_nesting(const Inventory::Camera& given) {
  if (is_nested_too_deeply(given.capabilities)) {
    throw Database_Error(
        fmt::format("the capabilities of camera {} are nested more than {} levels deep", given.id,
                    deepest_nesting));
  }
}

void store_capabilities(Engine& engine, const std::vector<Inventory::Camera>& cameras) {
  Capability_Documents documents(engine.odb());
  std::set<std::uint64_t> silent;  // they say nothing any more
  std::vector<rows::Camera_Capability> assigned;
  for (const Inventory::Camera& given : cameras) {
    require_readable_nesting(given);
    if (given.capabilities.empty()) {
      silent.insert(given.id);
    } else {
      assigned.push_back({given.id, documents.id_of(given.capabilities)});
    }
  }
  std::vector<rows::Camera_Capability> silenced;
  for_each_row<rows::Camera_Capability>(engine.odb(), "camera_id",
                                        [&](const rows::Camera_Capability& row) {
                                          if (silent.count(row.camera_id) != 0) {
                                            silenced.push_back(row);
                                          }
                                        });
  engine.rows().insert(documents.added());
  engine.rows().put(assigned);
  engine.rows().erase(silenced);
  engine.odb().execute(
      "DELETE FROM capability_document WHERE id NOT IN "
      "(SELECT document_id FROM camera_capability)");
}

void store_cameras(Engine& engine, const std::vector<Inventory::Camera>& cameras) {
  std::vector<camera> records;
  for (const Inventory::Camera& given : cameras) {
    camera record;
    record.id = given.id;
    record.name = given.name;
    record.object_detection = given.object_detection;
    record.motion_detection = given.motion_detection;
    records.push_back(std::move(record));
  }
  engine.rows().put(records);
  replace_tags<rows::Camera_Tag>(engine, cameras);
  store_capabilities(engine, cameras);
}

void store_subscriptions(Engine& engine, const std::vector<Inventory::Subscription>& given) {
  std::set<std::uint64_t> ids;
  std::vector<rows::Subscription> records;
  std::vector<rows::Subscription_Camera> cameras;
  for (const Inventory::Subscription& subscription : given) {
    rows::Subscription row;
    row.id = subscription.id;
    row.name = subscription.name;
    row.category_id = subscription.category_id;
    records.push_back(std::move(row));
    ids.insert(subscription.id);
    for (const std::uint64_t camera_id : subscription.camera_ids) {
      cameras.push_back({{subscription.id, camera_id}});
    }
  }
  engine.rows().put(records);
  replace_tags<rows::Subscription_Tag>(engine, given);
  replace_rows(engine, "record_id, linked_id", std::move(cameras),
               [&ids](const rows::Link& key) { return ids.count(key.record_id) != 0; });
}

void store_object_types(Engine& engine, const std::map<std::string, std::set<std::string>>& given) {
  std::vector<rows::Meta_Type> wanted;
  for (const auto& [name, types] : given) {
    for (const std::string& type : types) {
      wanted.push_back({{name, type}});
    }
  }
  replace_rows(engine, "name, type", std::move(wanted),
               [&given](const rows::Meta_Type_Key& key) { return given.count(key.name) != 0; });
}

/// With a text that an engine cannot hold.
std::string what_is_wrong_with(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    return "it has a zero byte (\\u0000)";
  }
  return is_utf8(text) ? "it has more bytes than a row can take" : "it has bytes that are no UTF-8";
}

}  // namespace

Inventory_References load_inventory_references(const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index& site) {
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
    references.object_types = site.object_types();
    return references;
  });
}

std::vector<Unstorable_Text> unstorable_texts(const std::shared_ptr<Database>& database,
                                              const std::vector<std::string_view>& texts) {
  return read(database, [&](Site_Index&) {
    std::vector<Unstorable_Text> unstorable;
    for (std::size_t place = 0; place < texts.size(); ++place) {
      if (!database->engine().can_hold({texts[place]})) {
        unstorable.push_back({place, what_is_wrong_with(texts[place])});
      }
    }
    return unstorable;
  });
}

std::map<std::string, std::set<std::string>> load_object_types(
    const std::shared_ptr<Database>& database) {
  return read(database, [](Site_Index& site) { return site.object_types(); });
}

void store_inventory(const std::shared_ptr<Database>& database, const Inventory& inventory) {
  store_inventory(database, [&inventory] { return &inventory; });
}

void store_inventory(const std::shared_ptr<Database>& database,
                     const std::function<const Inventory*()>& read) {
  write(database, [&](Site_Index&) {
    Engine& engine = database->engine();
    const Inventory* const inventory = read();
    if (inventory == nullptr) {
      return;
    }
    Pass::current(*database)->begin_writing();
    engine.rows().put(inventory->servers);
    replace_tags<rows::Server_Tag>(engine, inventory->servers);
    store_cameras(engine, inventory->cameras);
    engine.rows().put(inventory->schedules);
    engine.rows().put(inventory->categories);
    store_subscriptions(engine, inventory->subscriptions);
    store_object_types(engine, inventory->object_types);
  });
}

}  // namespace kuv::vemora::embedded_server
