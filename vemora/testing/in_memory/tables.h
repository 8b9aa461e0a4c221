// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/testing/builders/site_description.h"

namespace kuv::test {

/// What the in-memory repository keeps: plain rows by id, and links as ids. Whoever holds the
/// tables may read and change them between the calls of the repository.
struct In_Memory_Tables {
  using Ids = std::set<std::uint64_t>;
  template <class Row>
  using Table = std::map<std::uint64_t, Row>;

  struct Trigger {
    std::string name;
    Ids schedule_ids;
    std::set<Trigger_Source> sources;
  };

  /// A topic subscription has a camera and a topic, a generic one has neither.
  struct Subscription {
    std::string name;
    std::optional<std::uint64_t> category_id;
    std::optional<std::string> onvif_topic;
    std::optional<std::uint64_t> camera_id;
    std::set<Tag_Entry> tags;
    std::vector<std::uint64_t> further_camera_ids;
    Ids trigger_ids;
  };

  struct Detection {
    std::uint64_t camera_id = 0;
    Ids trigger_ids;
  };

  Table<server> servers;
  Table<camera> cameras;
  Table<schedule> schedules;
  Table<metadata_event_category> categories;
  Table<Trigger> triggers;
  Table<Subscription> subscriptions;
  Table<Detection> detections;

  std::uint64_t next_id = 1;  ///< for the next new record, or the next one that is not taken
};

/// The capability document of a camera that can send these topics.
inline Capability_Document capabilities_with(const std::set<std::string>& topics) {
  using Tree = Capability_Document::Tree;
  Tree listed;
  for (const std::string& topic : topics) {
    listed.push_back({topic, Tree()});  // one key, whatever dots it has
  }
  const auto document = std::make_shared<Tree>();
  if (!topics.empty()) {
    document->put_child("Metadata.Mode.capabilities.On.TopicFilter.capabilities", listed);
  }
  return Capability_Document(document);
}

/// Creates or replaces the records that the description names; the triggers that subscriptions hold
/// stay with them. A capability document in JSON is none of its business: of a camera it takes the
/// topics.
inline void store(const Site_Description& described, In_Memory_Tables& tables) {
  for (const auto& [id, record] : described.servers()) {
    tables.servers[id] = record;
  }
  for (const auto& [id, record] : described.cameras()) {
    tables.cameras[id] = {id,
                          record.name,
                          record.tags,
                          record.object_detection,
                          record.motion_detection,
                          capabilities_with(record.topics)};
  }
  for (const auto& [id, record] : described.schedules()) {
    tables.schedules[id] = record;
  }
  for (const auto& [id, record] : described.categories()) {
    tables.categories[id] = record;
  }
  for (const auto& [id, record] : described.subscriptions()) {
    In_Memory_Tables::Subscription& row = tables.subscriptions[id];
    row.name = record.name;
    row.category_id = record.category_id;
    row.further_camera_ids = {record.camera_ids.begin(), record.camera_ids.end()};
    row.tags.clear();
    for (const auto& [name, info] : record.tags) {
      row.tags.insert({name, info});
    }
  }
}

/// A copy of a row as a record; null where there is none.
template <class Record>
std::shared_ptr<Record> find_record(const In_Memory_Tables::Table<Record>& table,
                                    std::uint64_t id) {
  const auto found = table.find(id);
  return found == table.end() ? nullptr : std::make_shared<Record>(found->second);
}

inline std::shared_ptr<trigger> load_trigger(const In_Memory_Tables& tables, std::uint64_t id) {
  const auto found = tables.triggers.find(id);
  if (found == tables.triggers.end()) {
    return nullptr;
  }
  auto record = std::make_shared<trigger>();
  record->id = id;
  record->name = found->second.name;
  record->sources = found->second.sources;
  for (const std::uint64_t schedule_id : found->second.schedule_ids) {
    record->schedules.insert({find_record(tables.schedules, schedule_id)});
  }
  return record;
}

/// Those that are there, in ascending order.
inline std::vector<std::shared_ptr<trigger>> load_triggers(const In_Memory_Tables& tables,
                                                           const In_Memory_Tables::Ids& ids) {
  std::vector<std::shared_ptr<trigger>> records;
  for (const std::uint64_t id : ids) {
    if (auto record = load_trigger(tables, id)) {
      records.push_back(std::move(record));
    }
  }
  return records;
}

/// As it is stored, with all links loaded and no changes noted.
inline std::shared_ptr<metadata_event_subscription> load_subscription(
    const In_Memory_Tables& tables, std::uint64_t id) {
  const In_Memory_Tables::Subscription& row = tables.subscriptions.at(id);
  auto record = std::make_shared<metadata_event_subscription>();
  record->id = id;
  record->name = row.name;
  record->onvif_topic = row.onvif_topic;
  record->tags = row.tags;
  if (row.category_id) {
    record->category = find_record(tables.categories, *row.category_id);
  }
  if (row.camera_id) {
    record->camera = find_record(tables.cameras, *row.camera_id);
  }
  for (const std::uint64_t camera_id : row.further_camera_ids) {
    record->camera_links.emplace_back(find_record(tables.cameras, camera_id));
  }
  for (const auto& held : load_triggers(tables, row.trigger_ids)) {
    record->trigger_links.emplace_back(held);
  }
  return record;
}

/// As it is stored, with all links loaded and no changes noted.
inline std::shared_ptr<eta_camera> load_detection(const In_Memory_Tables& tables,
                                                  std::uint64_t id) {
  const In_Memory_Tables::Detection& row = tables.detections.at(id);
  auto record = std::make_shared<eta_camera>();
  record->id = id;
  record->camera = find_record(tables.cameras, row.camera_id);
  for (const auto& held : load_triggers(tables, row.trigger_ids)) {
    record->triggers.insert(held);
  }
  return record;
}

/// Takes the next id that no row of the table has.
template <class Row>
std::uint64_t take_id(In_Memory_Tables& tables, const In_Memory_Tables::Table<Row>& table) {
  while (table.count(tables.next_id) != 0) {
    ++tables.next_id;
  }
  return tables.next_id++;
}

template <class Ids>
bool are_all_stored(const In_Memory_Tables& tables, const Ids& trigger_ids) {
  for (const std::uint64_t id : trigger_ids) {
    if (tables.triggers.count(id) == 0) {
      return false;
    }
  }
  return true;
}

/// Stores what changed in the links of a record, and forgets that it changed. Refused when a
/// trigger that was added is not stored.
inline bool store_links(const In_Memory_Tables& tables, In_Memory_Tables::Ids& stored,
                        Trigger_Link_Changes& changes) {
  if (!are_all_stored(tables, changes.added)) {
    return false;
  }
  stored.insert(changes.added.begin(), changes.added.end());
  for (const std::uint64_t id : changes.removed) {
    stored.erase(id);
  }
  changes = {};
  return true;
}

/// The ids of the records in a list.
template <class Record>
In_Memory_Tables::Ids id_set_of(const std::vector<std::shared_ptr<Record>>& records) {
  In_Memory_Tables::Ids ids;
  for (const std::shared_ptr<Record>& record : records) {
    ids.insert(record->id);
  }
  return ids;
}

/// Whether the tags satisfy one of the terms; any do where there are no terms. Not by
/// Tag_Filter::matches_any, which is one of the things that the suite looks at.
template <class Tags>
bool satisfy_any(const Tags& tags, const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  for (const ODB_Utils::Tag_Search_Term& term : terms) {
    for (const auto& [name, info] : tags) {
      if (name == term.name && (!term.value || info.value == term.value)) {
        return true;
      }
    }
  }
  return terms.empty();
}

}  // namespace kuv::test
