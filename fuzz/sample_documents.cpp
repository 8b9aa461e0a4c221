// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/sample_documents.h"

#include <string>
#include <vector>

namespace kuv::fuzz {
namespace {

using Json::arrayValue;
using Json::objectValue;
using Json::UInt64;
using Json::Value;

/// Most of a site's schedules can be used, some cannot, some are gone.
Value sample_schedule_ids(Random& random) {
  static const std::vector<UInt64> ids{1, 2, 3, 4, 1, 2, 3, 4, 5, 6};
  Value chosen(arrayValue);
  for (auto count = random.below(4); count > 0; --count) {
    chosen.append(random.pick(ids));
  }
  return chosen;
}

Value sample_tag_filter(Random& random) {
  static const std::vector<std::string> names{"site", "indoor", "role", "T\u00fcr"};
  static const std::vector<std::string> values{"north", "south", "gate", ""};
  Value filter(objectValue);
  for (auto count = random.below(3); count > 0; --count) {
    Value& wanted = filter[random.pick(names)];
    switch (random.below(3)) {
      case 0:
        wanted = Json::nullValue;
        break;
      case 1:
        wanted = random.pick(values);
        break;
      default:
        wanted = arrayValue;
        wanted.append(random.pick(values));
        wanted.append(Value());
    }
  }
  return filter;
}

Value sample_tags(Random& random) {
  Value tags(objectValue);
  for (const char* filter : {"server", "camera", "eventSubscription"}) {
    if (random.chance(40)) {
      tags[filter] = sample_tag_filter(random);
    }
  }
  return tags;
}

Value sample_activity_duration(Random& random, bool needs_dropout) {
  static const std::vector<UInt64> min_durations{1000, 1001, 5000, 60000, 28800000};
  static const std::vector<UInt64> dropouts{1000, 2500, 600000};
  Value activity(objectValue);
  activity["minDurationMs"] = random.pick(min_durations);
  if (random.chance(60)) {
    activity["mode"] = random.chance(50) ? "object-track" : "object-presence";
  }
  const bool tracks = !needs_dropout && activity["mode"] == "object-track";
  if (!tracks || random.chance(50)) {
    activity["dropoutMs"] = random.pick(dropouts);
  }
  return activity;
}

Value onvif_source(Random& random) {
  static const std::vector<std::string> topics{
      "tns1:RuleEngine/CellMotionDetector/Motion", "tns1:VideoSource/MotionAlarm",
      "tns1:Device/Trigger/DigitalInput", "tns1:IVA/EnteringField/Eindringen_in_Feld_1//."};
  Value source(objectValue);
  source["type"] = random.chance(80) ? "onvif-metadata" : "ONVIF-Metadata";
  source["onvifTopic"] = random.pick(topics);
  return source;
}

Value object_source(Random& random) {
  static const std::vector<std::string> object_types{"person", "car", "vehicle", "v\u00e9lo"};
  Value source(objectValue);
  source["type"] = "object-detection";
  source["searchItem"]["type"] = random.pick(object_types);
  if (random.chance(50)) {
    source["searchItem"]["motionRequired"] = random.chance(50);
  }
  if (random.chance(70)) {
    source["activityDuration"] = sample_activity_duration(random, false);
  }
  return source;
}

Value motion_source(Random& random) {
  Value source(objectValue);
  source["type"] = "motion-detection";
  if (random.chance(70)) {
    source["activityDuration"] = sample_activity_duration(random, true);
  }
  return source;
}

Value plain_source(Random& random) {
  static const std::vector<std::string> types{"metadata-event", "audio-detection", "external",
                                              "smell-detection"};
  Value source(objectValue);
  source["type"] = random.pick(types);
  return source;
}

/// At most one source of each kind, so that none is a duplicate.
Value sample_sources(Random& random) {
  Value sources(arrayValue);
  while (sources.empty()) {
    if (random.chance(40)) {
      sources.append(onvif_source(random));
    }
    if (random.chance(60)) {
      sources.append(object_source(random));
    }
    if (random.chance(30)) {
      sources.append(motion_source(random));
    }
    if (random.chance(30)) {
      sources.append(plain_source(random));
    }
  }
  return sources;
}

Value sample_trigger(Random& random, UInt64 id) {
  Value trigger(objectValue);
  trigger["id"] = id;
  trigger["name"] = random.chance(90) ? "gate" : "";
  trigger["tags"] = sample_tags(random);
  trigger["sources"] = sample_sources(random);
  if (random.chance(40)) {
    trigger["anyTime"] = random.chance(50);
  }
  if (random.chance(60)) {
    trigger["scheduleIds"] = sample_schedule_ids(random);
  }
  return trigger;
}

Value sample_properties(Random& random) {
  Value properties(objectValue);
  for (const char* key : {"notificationMaxLatencySecs", "notificationDigestCooldownMins",
                          "notificationAckTimeoutSecs", "notificationNackDelayMs"}) {
    if (random.chance(60)) {
      properties[key] = UInt64(random.below(5000));
    }
  }
  return properties;
}

}  // namespace

Value sample_configuration(Random& random) {
  Value document(objectValue);
  Value& triggers = document["triggers"] = Value(arrayValue);
  for (UInt64 id = 1, count = 1 + random.below(3); id <= count; ++id) {
    triggers.append(sample_trigger(random, random.chance(90) ? id : ~id));
  }
  if (random.chance(70)) {
    document["properties"] = sample_properties(random);
  }
  return document;
}

Value sample_mapping(Random& random) {
  Value document(objectValue);
  Value& associations = document["triggerMapping"] = Value(arrayValue);
  for (auto count = random.below(4); count > 0; --count) {
    Value association(objectValue);
    association["scheduleIds"] = sample_schedule_ids(random);
    for (auto ids = 1 + random.below(3); ids > 0; --ids) {
      association["triggerIds"].append(UInt64(1 + random.below(4)));
    }
    associations.append(association);
  }
  return document;
}

}  // namespace kuv::fuzz
