// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/valid_variations.h"

#include <string>
#include <vector>

#include "fuzz/any_values.h"

namespace kuv::fuzz {
namespace {

using Json::Value;

Value& any_trigger(Value& configuration, Random& random) {
  return any_child(configuration["triggers"], random);
}

Value& any_source(Value& configuration, Random& random) {
  return any_child(any_trigger(configuration, random)["sources"], random);
}

void swap_some_elements(Value& configuration, Value& mapping, Random& random) {
  Value& trigger = any_trigger(configuration, random);
  std::vector<Value*> arrays{&configuration["triggers"], &trigger["sources"],
                             &mapping["triggerMapping"]};
  if (trigger.isMember("scheduleIds")) {
    arrays.push_back(&trigger["scheduleIds"]);
  }
  Value& array = *random.pick(arrays);
  if (!array.empty()) {
    swap_elements(array, random);
  }
}

/// Tag filters alone give every key a meaning.
void add_an_unknown_key(Value& configuration, Value& mapping, Random& random) {
  Value& trigger = any_trigger(configuration, random);
  Value& source = any_child(trigger["sources"], random);
  std::vector<Value*> objects{&configuration, &mapping, &trigger, &trigger["tags"], &source};
  for (const char* key : {"searchItem", "activityDuration"}) {
    if (source[key].isObject()) {
      objects.push_back(&source[key]);
    }
  }
  Value& object = *random.pick(objects);
  object[random.chance(50) ? "comment" : "T\u00fcr"] = any_value(random);
}

/// Absent, or null: that is the same.
void leave_out(Value& object, const std::string& key, Random& random) {
  if (random.chance(50)) {
    object.removeMember(key);
  } else {
    object[key] = Json::nullValue;
  }
}

void leave_out_of_the_document(Value& configuration, Random& random) {
  static const std::vector<std::string> settings{
      "notificationMaxLatencySecs", "notificationDigestCooldownMins", "notificationAckTimeoutSecs",
      "notificationNackDelayMs"};
  Value& properties = configuration["properties"];
  if (properties.isObject() && random.chance(70)) {
    leave_out(properties, random.pick(settings), random);
  } else {
    leave_out(configuration, "properties", random);
  }
}

void leave_out_of_a_trigger(Value& configuration, Random& random) {
  static const std::vector<std::string> filters{"server", "camera", "eventSubscription"};
  Value& trigger = any_trigger(configuration, random);
  switch (random.below(3)) {
    case 0:
      leave_out(trigger, "anyTime", random);
      break;
    case 1:
      leave_out(trigger, "scheduleIds", random);
      break;
    default:
      leave_out(trigger["tags"], random.pick(filters), random);
  }
}

/// Without a mode presence is measured, which needs its dropout.
void leave_out_of_a_source(Value& configuration, Random& random) {
  Value& source = any_source(configuration, random);
  Value& activity = source["activityDuration"];
  if (activity.isObject() && !activity["dropoutMs"].isNull() && random.chance(50)) {
    leave_out(activity, "mode", random);
  } else {
    leave_out(source, "activityDuration", random);
  }
}

void write_numbers_with_a_point(Value& node, Random& random) {
  constexpr double exact_below = 9007199254740992.0;
  for (Value& child : node) {
    if (child.isIntegral() && child.asDouble() < exact_below && random.chance(50)) {
      child = child.asDouble();
    }
    write_numbers_with_a_point(child, random);
  }
}

char changed_case(char letter) {
  const bool lower = letter >= 'a' && letter <= 'z';
  const bool upper = letter >= 'A' && letter <= 'Z';
  return lower || upper ? static_cast<char>(letter ^ 0x20) : letter;
}

void write_a_type_in_other_case(Value& configuration, Random& random) {
  Value& type = any_source(configuration, random)["type"];
  std::string name = type.asString();
  for (char& letter : name) {
    letter = random.chance(50) ? changed_case(letter) : letter;
  }
  type = name;
}

/// What does not belong to the type of a source is not read; that of an ONVIF source begins "on",
/// of object detection "ob".
void add_a_field_of_another_type(Value& configuration, Random& random) {
  Value& source = any_source(configuration, random);
  const char second_letter = source["type"].asString()[1];
  if (second_letter == 'n' || second_letter == 'N') {
    source["searchItem"] = any_value(random);
    source["activityDuration"] = any_value(random);
  } else {
    source["onvifTopic"] = any_value(random);
  }
}

void add_a_source_for_others(Value& configuration, Random& random) {
  Value source(Json::objectValue);
  source["type"] = random.chance(50) ? "external" : "vibration-detection";
  source["onvifTopic"] = any_value(random);
  source["searchItem"] = any_value(random);
  source["activityDuration"] = any_value(random);
  any_trigger(configuration, random)["sources"].append(source);
}

}  // namespace

void vary_validly(Value& configuration, Value& mapping, Random& random) {
  switch (random.below(10)) {
    case 0:
      return swap_some_elements(configuration, mapping, random);
    case 1:
      return add_an_unknown_key(configuration, mapping, random);
    case 2:
      return leave_out_of_the_document(configuration, random);
    case 3:
      return leave_out_of_a_trigger(configuration, random);
    case 4:
      return leave_out_of_a_source(configuration, random);
    case 5:
      return write_numbers_with_a_point(random.chance(50) ? configuration : mapping, random);
    case 6:
      return write_a_type_in_other_case(configuration, random);
    case 7:
      return add_a_field_of_another_type(configuration, random);
    case 8:
      return add_a_source_for_others(configuration, random);
    default:
      any_trigger(configuration, random)["name"] = random.pick(words());
  }
}

}  // namespace kuv::fuzz
