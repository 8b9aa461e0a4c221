// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/media/stream_pipeline.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/tags/tag_search_term.h"
#include "vemora/platform/trigger_source_type.h"

namespace kuv::vemora {

/// What object detection searches for.
struct Object_Search_Item {
  std::string object_type;       ///< never empty in a parsed trigger
  bool motion_required = false;  ///< objects that stand still do not count
};

/// By object type alone: a trigger searches for a type once, in motion or not.
inline bool operator<(const Object_Search_Item& left, const Object_Search_Item& right) {
  return left.object_type < right.object_type;
}

/// What an activity duration measures.
enum class Activity_Duration_Mode : std::int32_t {
  object_presence = 0,  ///< how long some object of the type is there
  object_track = 1,     ///< how long one and the same object is there
};

/// How long an activity must last before a source fires.
struct Activity_Duration {
  Activity_Duration_Mode mode = Activity_Duration_Mode::object_presence;  ///< what is measured
  std::chrono::microseconds min_duration{0};  ///< the source fires after this time
  std::chrono::microseconds dropout{0};       ///< an interruption up to this long is none
};

/// One thing that fires a trigger. Which optional fields are present follows from the type.
struct Trigger_Source {
  Trigger_Source_Type type = Trigger_Source_Type::onvif_metadata;  ///< the kind of event
  std::optional<std::string> onvif_topic;                          ///< onvif_metadata: never empty
  std::optional<Object_Search_Item> search_item;                   ///< object_detection
  std::optional<Activity_Duration> activity_duration;  ///< object_detection, motion_detection

  /// Orders the sources of a trigger: by type, ONVIF sources by topic, object detection by object
  /// type. All else counts as the same source, so a trigger has at most one source of any other
  /// type, and one per object type, whatever its motion flag and duration: two of them would fire
  /// together.
  bool operator<(const Trigger_Source& other) const {
    if (type != other.type) {
      return type < other.type;
    }
    if (type == Trigger_Source_Type::onvif_metadata) {
      return onvif_topic && other.onvif_topic && *onvif_topic < *other.onvif_topic;
    }
    if (type == Trigger_Source_Type::object_detection) {
      return search_item && other.search_item && *search_item < *other.search_item;
    }
    return false;
  }
};

/// One schedule that a trigger is tied to.
struct Trigger_Mapping_Entry {
  std::shared_ptr<vemora::schedule> schedule;  ///< never null in a parsed trigger
};

/// By the schedule's id: two records of one schedule are the same entry.
inline bool operator<(const Trigger_Mapping_Entry& left, const Trigger_Mapping_Entry& right) {
  return left.schedule->id < right.schedule->id;
}

/// One trigger of the configuration.
struct Trigger_Config {
  /// Which servers, cameras and generic subscriptions the trigger is for; an empty filter is for
  /// all.
  struct Tags {
    std::set<ODB_Utils::Tag_Search_Term> server;              ///< on which it is active
    std::set<ODB_Utils::Tag_Search_Term> camera;              ///< which its sources are about
    std::set<ODB_Utils::Tag_Search_Term> event_subscription;  ///< generic ones that it joins
  };

  /// What the pusher receives with the trigger, and the library makes no use of.
  struct Options {
    bool any_time = false;  ///< "anyTime"
  };

  /// The topics of the ONVIF sources, sorted and without duplicates as the sources are. Throws
  /// std::bad_optional_access on an ONVIF source without a topic, which no parsed trigger has.
  VEMORA_API std::vector<std::string> all_source_topics() const;

  std::uint64_t id = 0;                       ///< as it was configured; no two triggers share one
  std::string name;                           ///< for people
  Tags tags;                                  ///< what it is for
  std::set<Trigger_Source> sources;           ///< never empty in a parsed trigger
  std::set<Trigger_Mapping_Entry> schedules;  ///< in which the trigger is active
  Options options;                            ///< for the pusher
  bool matches_server = false;                ///< the server filter lets this server pass
  bool schedule_invalid = false;              ///< a schedule that it refers to cannot be used
};

/// Whether the trigger is at work on this server; one that is not is taken off every record.
inline bool is_active(const Trigger_Config& config) {
  return config.matches_server && !config.schedule_invalid;
}

}  // namespace kuv::vemora
