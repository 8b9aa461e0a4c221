// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "rows.h"

namespace own_platform {

using namespace kuv::vemora;

namespace {

Trigger_Source source_of(const Json::Value& row) {
  Trigger_Source source;
  source.type = static_cast<Trigger_Source_Type>(row["type"].asInt());
  if (row.isMember("topic")) {
    source.onvif_topic = row["topic"].asString();
  }
  if (row.isMember("object")) {
    source.search_item = Object_Search_Item{row["object"].asString(), row["inMotion"].asBool()};
  }
  if (row.isMember("mode")) {
    source.activity_duration =
        Activity_Duration{static_cast<Activity_Duration_Mode>(row["mode"].asInt()),
                          std::chrono::microseconds(row["least"].asInt64()),
                          std::chrono::microseconds(row["dropout"].asInt64())};
  }
  return source;
}

Json::Value row_of(const Trigger_Source& source) {
  Json::Value row;
  row["type"] = static_cast<int>(source.type);
  if (source.onvif_topic) {
    row["topic"] = *source.onvif_topic;
  }
  if (source.search_item) {
    row["object"] = source.search_item->object_type;
    row["inMotion"] = source.search_item->motion_required;
  }
  if (source.activity_duration) {
    row["mode"] = static_cast<int>(source.activity_duration->mode);
    row["least"] = Json::Int64(source.activity_duration->min_duration.count());
    row["dropout"] = Json::Int64(source.activity_duration->dropout.count());
  }
  return row;
}

Capability_Document capabilities_of(const Json::Value& topics) {
  using Tree = Capability_Document::Tree;
  Tree listed;
  for (const Json::Value& topic : topics) {
    listed.push_back({topic.asString(), Tree()});  // one key, whatever dots it has
  }
  const auto document = std::make_shared<Tree>();
  document->put_child("Metadata.Mode.capabilities.On.TopicFilter.capabilities", listed);
  return Capability_Document(document);
}

}  // namespace

std::shared_ptr<camera> load_camera(Store& store, std::uint64_t id) {
  const Json::Value& row = store.row("cameras", id);
  if (row.isNull()) {
    return nullptr;
  }
  return std::make_shared<camera>(
      camera{id, row["name"].asString(), tags_of(row["tags"]), row["objectDetection"].asBool(),
             row["motionDetection"].asBool(), capabilities_of(row["topics"])});
}

std::shared_ptr<schedule> load_schedule(Store& store, std::uint64_t id) {
  const Json::Value& row = store.row("schedules", id);
  return row.isNull() ? nullptr
                      : std::make_shared<schedule>(
                            schedule{id, row["name"].asString(), row["usable"].asBool()});
}

std::shared_ptr<trigger> load_trigger(Store& store, std::uint64_t id) {
  const Json::Value& row = store.row("triggers", id);
  if (row.isNull()) {
    return nullptr;
  }
  auto record = std::make_shared<trigger>();
  record->id = id;
  record->name = row["name"].asString();
  for (const std::uint64_t schedule_id : ids_in(row["schedules"])) {
    record->schedules.insert({load_schedule(store, schedule_id)});
  }
  for (const Json::Value& source : row["sources"]) {
    record->sources.insert(source_of(source));
  }
  return record;
}

std::shared_ptr<metadata_event_subscription> load_subscription(Store& store, std::uint64_t id) {
  const Json::Value& row = store.row("subscriptions", id);
  auto record = std::make_shared<metadata_event_subscription>();
  record->id = id;
  record->name = row["name"].asString();
  if (row.isMember("topic")) {
    record->onvif_topic = row["topic"].asString();
  }
  if (row.isMember("camera")) {
    record->camera = load_camera(store, row["camera"].asUInt64());
  }
  if (row.isMember("category")) {
    const std::uint64_t category_id = row["category"].asUInt64();
    record->category = std::make_shared<metadata_event_category>(metadata_event_category{
        category_id, store.row("categories", category_id)["name"].asString()});
  }
  for (const auto& [name, info] : tags_of(row["tags"])) {
    record->tags.insert({name, info});
  }
  for (const std::uint64_t camera_id : ids_in(row["cameras"])) {
    record->camera_links.emplace_back(load_camera(store, camera_id));
  }
  for (const std::uint64_t trigger_id : ids_in(row["triggers"])) {
    record->trigger_links.emplace_back(load_trigger(store, trigger_id));
  }
  return record;
}

std::shared_ptr<eta_camera> load_detection(Store& store, std::uint64_t id) {
  const Json::Value& row = store.row("detections", id);
  auto record = std::make_shared<eta_camera>();
  record->id = id;
  record->camera = load_camera(store, row["camera"].asUInt64());
  for (const std::uint64_t trigger_id : ids_in(row["triggers"])) {
    record->triggers.insert(load_trigger(store, trigger_id));
  }
  return record;
}

Tag_Map tags_of(const Json::Value& row) {
  Tag_Map tags;
  for (const std::string& name : row.getMemberNames()) {
    tags[name].value = row[name].isNull() ? std::nullopt : std::make_optional(row[name].asString());
  }
  return tags;
}

Json::Value row_of(const Tag_Map& tags) {
  Json::Value row(Json::objectValue);
  for (const auto& [name, info] : tags) {
    row[name] = info.value ? Json::Value(*info.value) : Json::Value();
  }
  return row;
}

Json::Value row_of(const trigger& record) {
  Json::Value row;
  row["name"] = record.name;
  row["schedules"] = Json::arrayValue;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    row["schedules"].append(Json::UInt64(entry.schedule->id));
  }
  row["sources"] = Json::arrayValue;
  for (const Trigger_Source& source : record.sources) {
    row["sources"].append(row_of(source));
  }
  return row;
}

std::set<std::uint64_t> ids_in(const Json::Value& list) {
  std::set<std::uint64_t> ids;
  for (const Json::Value& id : list) {
    ids.insert(id.asUInt64());
  }
  return ids;
}

Json::Value list_of(const std::set<std::uint64_t>& ids) {
  Json::Value list(Json::arrayValue);
  for (const std::uint64_t id : ids) {
    list.append(Json::UInt64(id));
  }
  return list;
}

}  // namespace own_platform
