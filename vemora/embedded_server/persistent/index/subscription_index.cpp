// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/subscription_index.h"

#include <algorithm>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/index/subscription_match.h"

namespace kuv::vemora::embedded_server {
namespace {

/// A link to a record; to one that is gone, a link by its id alone.
template <class Linked>
odb::lazy_shared_ptr<Linked> link_to(odb::database& database, const std::shared_ptr<Linked>& record,
                                     std::uint64_t id) {
  return record ? odb::lazy_shared_ptr<Linked>(record) : odb::lazy_shared_ptr<Linked>(database, id);
}

rows::Subscription row_of(const metadata_event_subscription& record) {
  rows::Subscription row;
  row.id = record.id;
  row.name = record.name;
  if (record.category) {
    row.category_id = record.category.object_id();
  }
  row.onvif_topic = record.onvif_topic;
  row.camera_id = record.camera_id();
  return row;
}

void append_details(const metadata_event_subscription& record,
                    Subscription_Index::Net_Changes::Details& to) {
  for (const Tag_Entry& tag : record.tags) {
    to.tags.push_back({{record.id, tag.name}, tag.info.value});
  }
  for (const odb::lazy_shared_ptr<camera>& link : record.camera_links) {
    to.cameras.push_back({{record.id, link.object_id()}});
  }
}

/// Whose streams such changes concern. The trigger manager asks for the same cameras: of
/// subscriptions added, deleted, or updated with other triggers. Who is left on a subscription when
/// a trigger is deleted is nothing to its camera.
void append_cameras(const Subscription_Index::List& changed, std::set<std::uint64_t>& to) {
  for (const std::shared_ptr<metadata_event_subscription>& record : changed) {
    if (record->camera) {
      to.insert(record->camera_id());
    }
  }
}

}  // namespace

Subscription_Index::Subscription_Index(odb::database& database, const Camera_Index& cameras,
                                       const Trigger_Index& triggers)
    : cameras_(cameras),
      triggers_(triggers),
      records_(Id_Allocator::load(database, "subscription")) {
  load_records(database);
  load_tags(database);
  load_cameras(database);
  for (auto& [id, entry] : records_.entries()) {
    enter(entry);
  }
  records_.load_links(database, "subscription_trigger", triggers_.all());
}

void Subscription_Index::load_records(odb::database& database) {
  for_each_row<metadata_event_category>(database, "id", [&](const metadata_event_category& row) {
    categories_.emplace(row.id, std::make_shared<metadata_event_category>(row));
  });
  for_each_row<rows::Subscription>(database, "id", [&](const rows::Subscription& row) {
    auto record = std::make_shared<Record>();
    record->id = row.id;
    record->name = row.name;
    if (row.category_id) {
      record->category = link_to(database, category(*row.category_id), *row.category_id);
    }
    record->onvif_topic = row.onvif_topic;
    if (row.camera_id) {
      record->camera = link_to(database, cameras_.find(*row.camera_id), *row.camera_id);
    }
    records_.load(std::move(record));
  });
}

void Subscription_Index::load_tags(odb::database& database) {
  for_each_row<rows::Subscription_Tag>(
      database, "record_id, name", [&](const rows::Subscription_Tag& row) {
        if (Entry* const entry = records_.find(row.key.record_id)) {
          entry->record->tags.insert(Tag_Entry{row.key.name, {row.value}});
        }
      });
}

void Subscription_Index::load_cameras(odb::database& database) {
  for_each_row<rows::Subscription_Camera>(
      database, "record_id, linked_id", [&](const rows::Subscription_Camera& row) {
        if (Entry* const entry = records_.find(row.key.record_id)) {
          entry->record->camera_links.push_back(
              link_to(database, cameras_.find(row.key.linked_id), row.key.linked_id));
        }
      });
  for (auto& [id, entry] : records_.entries()) {
    sort_by(entry.record->camera_links,
            [](const odb::lazy_shared_ptr<camera>& link) { return link.object_id(); });
  }
}

void Subscription_Index::enter(Entry& entry) {
  const Record& record = *entry.record;
  if (is_generic(record)) {
    generic_.push_back(&entry);
    for (const Tag_Entry& tag : record.tags) {
      tags_.add(tag.name, tag.info.value, &entry);
    }
  } else if (is_topic_kind(record)) {
    by_topic_[*record.onvif_topic].emplace(record.camera_id(), &entry);
  }
}

Subscription_Index::Cameras_On_Topic Subscription_Index::cameras_on(
    const std::string& topic) const {
  const auto found = by_topic_.find(topic);
  return Cameras_On_Topic(found == by_topic_.end() ? nullptr : &found->second);
}

bool Subscription_Index::exists(std::uint64_t camera_id, const std::string& topic) const {
  return cameras_on(topic).contain(camera_id);
}

std::size_t Subscription_Index::count_topic_subscriptions() const {
  std::size_t count = 0;
  for (const auto& [topic, by_camera] : by_topic_) {
    count += by_camera.size();
  }
  return count;
}

Subscription_Index::List Subscription_Index::matching(const Query& query) {
  const bool lacking = query.trigger && query.trigger_match == Query::Trigger_Match::lacking;
  static const Records::Holders nobody;
  Records::Holders::Walk excluded(lacking ? records_.holders(query.trigger->id) : nobody);
  const Subscription_Match matches(query);
  List found;
  for (const Entry* const entry : candidates(query)) {
    const Record& record = *entry->record;
    if (!excluded.contains(record.id) && matches(record)) {
      found.push_back(entry->record);
    }
  }
  sort_unique_by(found, [](const std::shared_ptr<Record>& record) { return record->id; });
  return found;
}

/// At least those that the query selects, and as few more as can be had without looking at each.
Subscription_Index::Records::Entry_List Subscription_Index::candidates(const Query& query) {
  if (query.trigger && query.trigger_match == Query::Trigger_Match::holding) {
    return records_.holders(query.trigger->id).entries();
  }
  const bool inside = query.topics_and_cameras == Query::Topics_And_Cameras::matching;
  if (inside && query.kind == Query::Kind::topic && !query.topics.empty()) {
    return candidates_by_topic(query);
  }
  if (query.kind == Query::Kind::generic) {
    return candidates_by_tag(query);
  }
  Records::Entry_List everything;
  for (auto& [id, entry] : records_.entries()) {
    everything.push_back(&entry);
  }
  return everything;
}

Subscription_Index::Records::Entry_List Subscription_Index::candidates_by_topic(
    const Query& query) const {
  Records::Entry_List found;
  for (const std::string& topic : query.topics) {
    const auto on_topic = by_topic_.find(topic);
    if (on_topic == by_topic_.end()) {
      continue;
    }
    if (query.cameras.empty()) {
      for (const auto& [camera_id, entry] : on_topic->second) {
        found.push_back(entry);
      }
    }
    for (const std::shared_ptr<camera>& wanted : query.cameras) {
      const auto entry = on_topic->second.find(wanted->id);
      if (entry != on_topic->second.end()) {
        found.push_back(entry->second);
      }
    }
  }
  return found;
}

Subscription_Index::Records::Entry_List Subscription_Index::candidates_by_tag(
    const Query& query) const {
  const bool selective = query.tags_match == Query::Tags::matching && !query.tags.empty();
  return selective ? tags_.find_any(query.tags) : generic_;
}

std::shared_ptr<metadata_event_category> Subscription_Index::category(std::uint64_t id) const {
  const auto found = categories_.find(id);
  return found == categories_.end() ? nullptr : found->second;
}

bool Subscription_Index::references_are_stored(const Record& record) const {
  const std::vector<std::uint64_t> triggers = record.trigger_ids();
  std::set<std::uint64_t> further;
  const auto is_stored_once = [&](const odb::lazy_shared_ptr<camera>& link) {
    return link && cameras_.find(link.object_id()) && further.insert(link.object_id()).second;
  };
  return cameras_.find(record.camera_id()) &&
         (!record.category || category(record.category.object_id())) &&
         std::all_of(triggers.begin(), triggers.end(),
                     [this](std::uint64_t id) { return triggers_.contains(id); }) &&
         std::all_of(record.camera_links.begin(), record.camera_links.end(), is_stored_once);
}

bool Subscription_Index::add(const std::shared_ptr<Record>& added) {
  if (!added->camera || !added->onvif_topic || !references_are_stored(*added) ||
      exists(added->camera_id(), *added->onvif_topic)) {
    return false;
  }
  enter(records_.add(added));
  return true;
}

bool Subscription_Index::update(const std::shared_ptr<Record>& changed) {
  return records_.update(changed, [this](std::uint64_t id) { return triggers_.find(id); });
}

void Subscription_Index::delete_without_triggers() {
  records_.delete_without_triggers(is_topic_kind, [this](const Record& record) {
    by_topic_[*record.onvif_topic].erase(record.camera_id());
  });
}

Subscription_Index::Net_Changes Subscription_Index::settle() {
  Records::Net_Changes changes = records_.settle();
  Net_Changes net;
  for (const std::shared_ptr<Record>& record : changes.added) {
    net.added.push_back(row_of(*record));
    append_details(*record, net.added_details);
  }
  for (const std::shared_ptr<Record>& record : changes.deleted) {
    net.deleted.push_back(record->id);
    append_details(*record, net.deleted_details);
  }
  for (const List* const records : {&changes.added, &changes.deleted, &changes.updated}) {
    append_cameras(*records, net.cameras);
  }
  net.links = std::move(changes.links);
  return net;
}

}  // namespace kuv::vemora::embedded_server
