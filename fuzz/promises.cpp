// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/promises.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>

#include "fuzz/site.h"
#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/tags/tags_json_converter.h"

namespace kuv::fuzz {
namespace {

using namespace kuv::vemora;
using namespace std::chrono_literals;

class Promises {
 public:
  void keep(bool kept, const char* promise) {
    if (!kept) {
      broken.emplace_back(promise);
    }
  }

  std::vector<std::string> broken;
};

// The properties

void check_setting(const std::optional<Notification_Properties::Milliseconds>& setting,
                   const Json::Value& value, std::uint64_t milliseconds_per_unit,
                   Promises& promises) {
  promises.keep(setting.has_value() == !value.isNull(), "what is given is set, and nothing else");
  if (setting && !value.isNull()) {
    const std::uint64_t milliseconds = value.asUInt64() * milliseconds_per_unit;
    promises.keep(value.isUInt() && setting->count() == milliseconds % (1ULL << 32U),
                  "a setting is what was given, in milliseconds and in 32 bits");
  }
}

void check_properties(const Notification_Properties& parsed, const Json::Value& properties,
                      Promises& promises) {
  check_setting(parsed.max_latency, properties["notificationMaxLatencySecs"], 1000, promises);
  check_setting(parsed.digest_cooldown, properties["notificationDigestCooldownMins"], 60000,
                promises);
  check_setting(parsed.ack_timeout, properties["notificationAckTimeoutSecs"], 1000, promises);
  check_setting(parsed.nack_delay, properties["notificationNackDelayMs"], 1, promises);
}

// Schedules

/// Ids of schedules; nothing where one of them cannot be used.
using Schedule_Ids = std::optional<std::set<std::uint64_t>>;

Schedule_Ids schedules_given(const Json::Value& schedule_ids) {
  std::set<std::uint64_t> ids;
  for (const Json::Value& id : schedule_ids) {
    ids.insert(id.asUInt64());
  }
  return std::all_of(ids.begin(), ids.end(), can_be_used) ? Schedule_Ids(ids) : std::nullopt;
}

std::set<std::uint64_t> ids_of(const std::set<Trigger_Mapping_Entry>& entries) {
  std::set<std::uint64_t> ids;
  for (const Trigger_Mapping_Entry& entry : entries) {
    ids.insert(entry.schedule->id);
  }
  return ids;
}

/// What the associations give each trigger, taken together; nothing where one of them gives a
/// schedule that cannot be used.
std::map<std::uint64_t, Schedule_Ids> schedules_by_trigger(const Json::Value& associations) {
  std::map<std::uint64_t, Json::Value> given;
  for (const Json::Value& association : associations) {
    for (const Json::Value& trigger_id : association["triggerIds"]) {
      Json::Value& all = given[trigger_id.asUInt64()];
      for (const Json::Value& schedule_id : association["scheduleIds"]) {
        all.append(schedule_id);
      }
    }
  }
  std::map<std::uint64_t, Schedule_Ids> expected;
  for (const auto& [trigger_id, schedule_ids] : given) {
    expected[trigger_id] = schedules_given(schedule_ids);
  }
  return expected;
}

void check_mapping(const Trigger_Mapping& mapping, const Json::Value& associations,
                   Promises& promises) {
  std::map<std::uint64_t, Schedule_Ids> mapped;
  for (const auto& [trigger_id, entries] : mapping) {
    mapped[trigger_id] = entries ? Schedule_Ids(ids_of(*entries)) : std::nullopt;
  }
  promises.keep(mapped == schedules_by_trigger(associations),
                "a trigger is mapped to all schedules that it is given, or to none");
}

void check_schedules(const Trigger_Config& config, const Json::Value& schedule_ids,
                     const Trigger_Mapping& mapping, Promises& promises) {
  const auto mapped = mapping.find(config.id);
  const bool mapping_is_invalid = mapped != mapping.end() && !mapped->second;
  const Schedule_Ids own = schedules_given(schedule_ids);
  const bool is_invalid = !schedule_ids.isNull() && (mapping_is_invalid || !own);
  promises.keep(config.schedule_invalid == is_invalid,
                "schedules are invalid where one of the trigger's or of its mapping's is");
  promises.keep(ids_of(config.schedules) == (is_invalid ? std::set<std::uint64_t>() : own.value()),
                "a trigger has the schedules that it lists itself");
}

// Sources

void check_duration(const Trigger_Source& source, Promises& promises) {
  const Activity_Duration& activity = *source.activity_duration;
  const bool tracks = activity.mode == Activity_Duration_Mode::object_track;
  promises.keep(!tracks || source.type == Trigger_Source_Type::object_detection,
                "only objects are tracked");
  promises.keep(activity.min_duration >= 1s && activity.min_duration <= 8h,
                "an activity lasts 1 s to 8 h");
  const bool in_range = activity.dropout >= 1s && activity.dropout <= 10min;
  promises.keep(in_range || (tracks && activity.dropout == 0s),
                "a dropout lasts 1 s to 10 min, or a track has none");
}

void check_source(const Trigger_Source& source, Promises& promises) {
  const bool onvif = source.type == Trigger_Source_Type::onvif_metadata;
  const bool objects = source.type == Trigger_Source_Type::object_detection;
  const bool motion = source.type == Trigger_Source_Type::motion_detection;
  promises.keep(source.type != Trigger_Source_Type::external, "external sources are dropped");
  promises.keep(source.onvif_topic.has_value() == onvif, "ONVIF sources alone have topics");
  promises.keep(!onvif || !source.onvif_topic->empty(), "no topic is empty");
  promises.keep(source.search_item.has_value() == objects, "object sources alone search");
  promises.keep(!objects || !source.search_item->object_type.empty(), "no object type is empty");
  if (source.activity_duration) {
    promises.keep(objects || motion, "objects and motion alone have durations");
    check_duration(source, promises);
  }
}

/// Whether a source is of a kind that this server subscribes to.
bool is_kept(const Json::Value& source) {
  static constexpr std::array<std::string_view, 5> kinds{"onvif-metadata", "metadata-event",
                                                         "object-detection", "motion-detection",
                                                         "audio-detection"};
  std::string type = source["type"].asString();
  for (char& letter : type) {
    letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  }
  return std::find(kinds.begin(), kinds.end(), type) != kinds.end();
}

void check_sources(const Trigger_Config& config, const Json::Value& sources, Promises& promises) {
  for (const Trigger_Source& source : config.sources) {
    check_source(source, promises);
  }
  const auto kept = std::count_if(sources.begin(), sources.end(), is_kept);
  promises.keep(config.sources.size() == static_cast<std::size_t>(kept),
                "every source of a kind that is known is kept");
  const std::vector<std::string> topics = config.all_source_topics();
  promises.keep(std::set<std::string>(topics.begin(), topics.end()).size() == topics.size(),
                "no topic comes twice");
}

// Triggers

std::set<ODB_Utils::Tag_Search_Term> terms_of(const Json::Value& filter) {
  return filter.isNull() ? std::set<ODB_Utils::Tag_Search_Term>()
                         : Vemora_Tags_JSON_Converter::parse_search_tags(filter);
}

void check_tags(const Trigger_Config& config, const Json::Value& tags, Promises& promises) {
  promises.keep(config.tags.server == terms_of(tags["server"]) &&
                    config.tags.camera == terms_of(tags["camera"]) &&
                    config.tags.event_subscription == terms_of(tags["eventSubscription"]),
                "a trigger has the tag filters of the document");
  promises.keep(config.matches_server == Tag_Filter::matches_any(server_tags(), config.tags.server),
                "the server filter says whether the server matches");
}

void check_config(const Trigger_Config& config, const Json::Value& trigger,
                  const Trigger_Mapping& mapping, Promises& promises) {
  promises.keep(config.id == trigger["id"].asUInt64(), "triggers keep the order of the document");
  promises.keep(config.name == trigger["name"].asString(), "a trigger has its name");
  promises.keep(config.options.any_time == trigger["anyTime"].asBool(),
                "a trigger is for any time where the document says so");
  check_tags(config, trigger["tags"], promises);
  check_sources(config, trigger["sources"], promises);
  check_schedules(config, trigger["scheduleIds"], mapping, promises);
}

/// The triggers of the document of which some source is kept.
std::vector<const Json::Value*> kept_triggers(const Json::Value& triggers) {
  std::vector<const Json::Value*> kept;
  for (const Json::Value& trigger : triggers) {
    const Json::Value& sources = trigger["sources"];
    if (std::any_of(sources.begin(), sources.end(), is_kept)) {
      kept.push_back(&trigger);
    }
  }
  return kept;
}

void check_configs(const Parsed& parsed, const Json::Value& triggers, Promises& promises) {
  const std::vector<const Json::Value*> kept = kept_triggers(triggers);
  promises.keep(parsed.configs.size() == kept.size(), "every trigger with a source left is kept");
  std::set<std::uint64_t> ids;
  for (std::size_t place = 0; place < std::min(kept.size(), parsed.configs.size()); ++place) {
    const Trigger_Config& config = parsed.configs[place];
    promises.keep(ids.insert(config.id).second, "no id comes twice");
    check_config(config, *kept[place], parsed.mapping, promises);
  }
}

}  // namespace

std::vector<std::string> broken_promises(const Parsed& parsed, const Json::Value& configuration,
                                         const Json::Value& mapping) {
  Promises promises;
  check_properties(parsed.properties, configuration["properties"], promises);
  check_mapping(parsed.mapping, mapping["triggerMapping"], promises);
  check_configs(parsed, configuration["triggers"], promises);
  return promises.broken;
}

}  // namespace kuv::fuzz
