#include "tools/vemora-triggers/render/records.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/value.h>

#include <chrono>
#include <string>

#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
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

Json::Value to_json(const trigger& record) {
  return trigger_to_json(record);
}

template <class Linked>
Json::Value linked_id(const odb::lazy_shared_ptr<Linked>& link) {
  const Linked* const loaded = link.get();
  return loaded != nullptr ? Json::Value(Json::UInt64(loaded->id)) : Json::Value();
}

Json::Value to_json(const std::optional<std::string>& text) {
  return text ? Json::Value(*text) : Json::Value();
}

/// The tags of any kind of record: a set of entries, or a map.
template <class Tags>
Json::Value tags_to_json(const Tags& tags) {
  Json::Value object(Json::objectValue);
  for (const auto& [name, info] : tags) {
    object[name] = to_json(info.value);
  }
  return object;
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

std::string join(const std::vector<std::uint64_t>& ids) {
  return fmt::format("{}", fmt::join(ids, " "));
}

std::string describe_sources(const trigger& record) {
  std::vector<std::string> sources;
  for (const Trigger_Source& source : record.sources) {
    sources.push_back(describe(source));
  }
  return fmt::format("{}", fmt::join(sources, ", "));
}

template <class Tags>
std::string describe_tags(const Tags& tags) {
  std::vector<std::string> texts;
  for (const auto& [name, info] : tags) {
    texts.push_back(printable(info.value ? name + "=" + *info.value : name));
  }
  return fmt::format("{}", fmt::join(texts, " "));
}

using Row = std::vector<std::string>;

/// As a JSON list, or as a table with a row for each record.
template <class Record, class To_Row>
void print_records(const Options& options, const Records<Record>& records, const Row& headings,
                   To_Row to_row) {
  Json::Value list(Json::arrayValue);
  std::vector<Row> rows;
  for (const std::shared_ptr<Record>& record : records) {
    if (options.json) {
      list.append(to_json(*record));
    } else {
      rows.push_back(to_row(*record));
    }
  }
  if (options.json) {
    print_json(list);
  } else {
    print_table(headings, rows);
  }
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

void print_triggers(const Options& options, const Records<trigger>& records) {
  print_records(options, records, {"ID", "NAME", "SCHEDULES", "SOURCES"},
                [](const trigger& record) -> Row {
                  return {std::to_string(record.id), printable(record.name),
                          join(schedule_ids(record)), describe_sources(record)};
                });
}

void print_subscriptions(const Options& options,
                         const Records<metadata_event_subscription>& records) {
  print_records(options, records, {"ID", "CAMERA", "TOPIC (OR NAME)", "TAGS", "TRIGGERS"},
                [](const metadata_event_subscription& record) -> Row {
                  return {std::to_string(record.id),
                          record.camera ? std::to_string(record.camera_id()) : "-",
                          printable(record.onvif_topic.value_or("(" + record.name + ")")),
                          describe_tags(record.tags), join(record.trigger_ids())};
                });
}

void print_detection(const Options& options, const Records<eta_camera>& records) {
  print_records(options, records, {"ID", "CAMERA", "TRIGGERS"},
                [](const eta_camera& record) -> Row {
                  return {std::to_string(record.id), std::to_string(record.camera_id()),
                          join(trigger_ids(record))};
                });
}

void print_cameras(const Options& options, const Records<camera>& records) {
  print_records(options, records, {"ID", "NAME", "TAGS", "DETECTS", "", "TOPICS"},
                [](const camera& record) -> Row {
                  return {std::to_string(record.id),
                          printable(record.name),
                          describe_tags(record.tags),
                          record.object_detection ? "objects" : "-",
                          record.motion_detection ? "motion" : "-",
                          std::to_string(topics_of(record).size())};
                });
}

}  // namespace kuv::vemora::tools
