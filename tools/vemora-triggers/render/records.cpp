// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/records.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/value.h>

#include <chrono>
#include <iostream>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "tools/vemora-triggers/render/list.h"
#include "tools/vemora-triggers/render/reasons.h"
#include "tools/vemora-triggers/render/tags.h"
#include "vemora/embedded_server/persistent/source_type_names.h"
#include "vemora/embedded_server/texts/printable.h"
#include "vemora/platform/records/supported_topics.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::printable;
using std::chrono::duration_cast;
using std::chrono::milliseconds;

Json::Value ids_to_json(const std::vector<std::uint64_t>& ids) {
  Json::Value list(Json::arrayValue);
  for (const std::uint64_t id : ids) {
    list.append(Json::UInt64(id));
  }
  return list;
}

Json::Value to_json(const Activity_Duration& activity) {
  Json::Value object(Json::objectValue);
  object["mode"] =
      activity.mode == Activity_Duration_Mode::object_track ? "object-track" : "object-presence";
  object["minDurationMs"] = Json::Int64(duration_cast<milliseconds>(activity.min_duration).count());
  if (activity.dropout.count() != 0) {
    object["dropoutMs"] = Json::Int64(duration_cast<milliseconds>(activity.dropout).count());
  }
  return object;
}

std::vector<std::uint64_t> schedule_ids(const trigger& record) {
  std::vector<std::uint64_t> ids;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    ids.push_back(entry.schedule->id);
  }
  return ids;
}

template <class Linked>
Json::Value linked_id(const odb::lazy_shared_ptr<Linked>& link) {
  const Linked* const loaded = link.get();
  return loaded != nullptr ? Json::Value(Json::UInt64(loaded->id)) : Json::Value();
}

Json::Value to_json(const std::optional<std::string>& text) {
  return text ? Json::Value(*text) : Json::Value();
}

Json::Value to_json(const metadata_event_subscription& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["name"] = record.name;
  object["onvifTopic"] = to_json(record.onvif_topic);
  object["cameraId"] =
      record.camera ? Json::Value(Json::UInt64(record.camera_id())) : Json::Value();
  object["triggerIds"] = ids_to_json(record.trigger_ids());
  object["tags"] = tags_to_json(record.tags);
  object["categoryId"] = linked_id(record.category);
  object["cameraIds"] = Json::Value(Json::arrayValue);
  for (const auto& link : record.camera_links) {
    object["cameraIds"].append(linked_id(link));
  }
  return object;
}

std::vector<std::uint64_t> trigger_ids(const eta_camera& record) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.push_back(held->id);
  }
  return ids;
}

Json::Value to_json(const eta_camera& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["cameraId"] = Json::UInt64(record.camera_id());
  object["triggerIds"] = ids_to_json(trigger_ids(record));
  return object;
}

std::vector<std::string> topics_of(const camera& record) {
  std::vector<std::string> topics;
  for (const auto& [topic, ignored] : supported_topics(record)) {
    topics.push_back(topic);
  }
  return topics;
}

Json::Value to_json(const camera& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["name"] = record.name;
  object["tags"] = tags_to_json(record.tags);
  object["objectDetection"] = record.object_detection;
  object["motionDetection"] = record.motion_detection;
  object["onvifTopics"] = Json::Value(Json::arrayValue);
  for (const std::string& topic : topics_of(record)) {
    object["onvifTopics"].append(topic);
  }
  return object;
}

/// "7 person at the gate": an id, with the name of its record if there is one.
std::string id_and_name(std::uint64_t id, const std::string& name) {
  return printable(name.empty() ? std::to_string(id) : fmt::format("{} {}", id, name));
}

template <class Linked>
std::string id_and_name(std::uint64_t id, const Linked* linked) {
  return id_and_name(id, linked == nullptr ? "(gone)" : linked->name);
}

/// Records with their names, which often have commas.
std::string join(const std::vector<std::string>& records) {
  return fmt::format("{}", fmt::join(records, "; "));
}

std::string describe_schedules(const trigger& record) {
  std::vector<std::string> texts;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    texts.push_back(id_and_name(entry.schedule->id, entry.schedule->name));
  }
  return join(texts);
}

std::string describe_triggers(const metadata_event_subscription& record) {
  std::vector<std::string> texts;
  auto link = record.trigger_links.begin();  // in the order of the ids
  for (const std::uint64_t id : record.trigger_ids()) {
    texts.push_back(id_and_name(id, (link++)->get()));
  }
  return join(texts);
}

std::string describe_triggers(const eta_camera& record) {
  std::vector<std::string> texts;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    texts.push_back(id_and_name(held->id, held->name));
  }
  return join(texts);
}

template <class Record>
std::string describe_camera(const Record& record) {
  return id_and_name(record.camera_id(), record.camera.get());
}

std::string describe_sources(const trigger& record) {
  std::vector<std::string> sources;
  for (const Trigger_Source& source : record.sources) {
    sources.push_back(describe(source));
  }
  return fmt::format("{}", fmt::join(sources, ", "));
}

/// What its triggers search for, as they are configured.
std::string describe_objects(const eta_camera& record) {
  std::set<Object_Search_Item> items;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    for (const Trigger_Source& source : held->sources) {
      if (source.type == Trigger_Source_Type::object_detection && source.search_item) {
        items.insert(*source.search_item);
      }
    }
  }
  std::vector<std::string> texts;
  texts.reserve(items.size());
  for (const Object_Search_Item& item : items) {
    texts.push_back(printable(item.object_type + (item.motion_required ? " in motion" : "")));
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::string describe_detection(const camera& record) {
  const char* const motion = record.motion_detection ? "motion" : "-";
  return record.object_detection ? (record.motion_detection ? "objects, motion" : "objects")
                                 : motion;
}

}  // namespace

Json::Value source_to_json(const Trigger_Source& source) {
  Json::Value object(Json::objectValue);
  object["type"] = std::string(name_of(source.type));
  if (source.onvif_topic) {
    object["onvifTopic"] = *source.onvif_topic;
  }
  if (source.search_item) {
    object["searchItem"]["type"] = source.search_item->object_type;
    object["searchItem"]["motionRequired"] = source.search_item->motion_required;
  }
  if (source.activity_duration) {
    object["activityDuration"] = to_json(*source.activity_duration);
  }
  return object;
}

Json::Value trigger_to_json(const trigger& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["name"] = record.name;
  object["scheduleIds"] = ids_to_json(schedule_ids(record));
  object["sources"] = Json::Value(Json::arrayValue);
  for (const Trigger_Source& source : record.sources) {
    object["sources"].append(source_to_json(source));
  }
  return object;
}

std::string describe(const Trigger_Source& source) {
  std::string text(name_of(source.type));
  if (source.onvif_topic) {
    text += " " + *source.onvif_topic;
  }
  if (source.search_item) {
    text += " " + source.search_item->object_type;
    text += source.search_item->motion_required ? " in motion" : "";
  }
  if (source.activity_duration) {
    text += fmt::format(" for {} s",
                        static_cast<double>(source.activity_duration->min_duration.count()) / 1e6);
  }
  return printable(text);
}

void print_triggers(const Options& options, const Records<trigger>& records,
                    const std::optional<std::size_t>& sort_column) {
  print_list(options, addresses(records), sort_column,
             list_form<trigger>(
                 {"ID", "NAME", "SCHEDULES", "SOURCES"},
                 [](const trigger& record) { return trigger_to_json(record); },
                 [](const trigger& record) -> Row {
                   return {std::to_string(record.id), printable(record.name),
                           describe_schedules(record), describe_sources(record)};
                 }));
}

void print_inactive_triggers(const operations::Inactive_Triggers& inactive) {
  std::vector<Row> rows;
  for (const operations::Explanation& trigger : inactive.first) {
    rows.push_back({std::to_string(trigger.id), printable(trigger.name.value_or("")),
                    described(trigger.reasons)});
  }
  print_table({"NOT STORED", "NAME", "WHY"}, rows);
  if (inactive.count > inactive.first.size()) {
    std::cout << fmt::format("{} more are configured and not stored.\n",
                             inactive.count - inactive.first.size());
  }
}

void print_subscriptions(const Options& options,
                         const Records<metadata_event_subscription>& records,
                         const std::optional<std::size_t>& sort_column) {
  using Subscription = metadata_event_subscription;
  print_list(options, addresses(records), sort_column,
             list_form<Subscription>(
                 {"ID", "CAMERA", "TOPIC (OR NAME)", "TAGS", "TRIGGERS"},
                 [](const Subscription& record) { return to_json(record); },
                 [](const Subscription& record) -> Row {
                   return {std::to_string(record.id), record.camera ? describe_camera(record) : "-",
                           printable(record.onvif_topic.value_or("(" + record.name + ")")),
                           describe_tags(record.tags), describe_triggers(record)};
                 }));
}

void print_detection(const Options& options, const Records<eta_camera>& records,
                     const std::optional<std::size_t>& sort_column) {
  print_list(options, addresses(records), sort_column,
             list_form<eta_camera>(
                 {"ID", "CAMERA", "OBJECTS", "TRIGGERS"},
                 [](const eta_camera& record) { return to_json(record); },
                 [](const eta_camera& record) -> Row {
                   return {std::to_string(record.id), describe_camera(record),
                           describe_objects(record), describe_triggers(record)};
                 }));
}

void print_cameras(const Options& options, const Records<camera>& records,
                   const std::optional<std::size_t>& sort_column) {
  print_list(options, addresses(records), sort_column,
             list_form<camera>(
                 {"ID", "NAME", "TAGS", "DETECTS", "TOPICS"},
                 [](const camera& record) { return to_json(record); },
                 [](const camera& record) -> Row {
                   return {std::to_string(record.id), printable(record.name),
                           describe_tags(record.tags), describe_detection(record),
                           std::to_string(topics_of(record).size())};
                 }));
}

void print_topics(const camera& record, const Records<metadata_event_subscription>& subscriptions) {
  std::map<std::string, Row> rows;
  for (const std::string& topic : topics_of(record)) {
    rows[topic] = {printable(topic), "yes", ""};
  }
  for (const auto& subscription : subscriptions) {
    if (subscription->onvif_topic) {
      const std::string& topic = *subscription->onvif_topic;
      rows.try_emplace(topic, Row{printable(topic), "no", ""}).first->second[2] =
          describe_triggers(*subscription);
    }
  }
  std::vector<Row> table;
  table.reserve(rows.size());
  for (auto& entry : rows) {
    table.push_back(std::move(entry.second));
  }
  std::cout << '\n';
  print_table({"TOPIC", "SUPPORTED", "TRIGGERS"}, table);
}

}  // namespace kuv::vemora::tools
