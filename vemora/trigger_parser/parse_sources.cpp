// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/parse_sources.h"

#include <optional>
#include <string>
#include <utility>

#include "vemora/platform/utils/json_elements.h"
#include "vemora/trigger_parser/members.h"
#include "vemora/trigger_parser/parse_activity_duration.h"
#include "vemora/trigger_parser/source_type_of.h"

namespace kuv::vemora {
namespace {

/// A type that this server does not know is no fault: configurations are shared with newer servers,
/// and the source is theirs.
std::optional<Trigger_Source_Type> parse_type(const Member& type, const Letters& letters,
                                              Faults& faults) {
  if (!faults.require(type->isString(), type, "\"type\" field is missing or invalid for source.")) {
    return std::nullopt;
  }
  return source_type_of(type->asString(), letters);
}

/// Leaves nothing when it is no topic.
void parse_onvif_topic(const Member& topic, std::optional<std::string>& parsed, Faults& faults) {
  if (!faults.require(topic->isString(), topic,
                      "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.")) {
    return;
  }
  parsed = topic->asString();
  if (!faults.require(
          !parsed->empty(), topic,
          "An onvif-metadata source has an \"onvifTopic\" field with an empty string.")) {
    parsed.reset();
  }
}

/// Empty when it is no object type.
std::string parse_object_type(const Member& type, Faults& faults) {
  std::string parsed;
  if (faults.require(type->isString(), type,
                     "An object-detection source has a missing or invalid object type.")) {
    parsed = type->asString();
    faults.require(!parsed.empty(), type,
                   "An object-detection source has an empty object type specified.");
  }
  return parsed;
}

/// A null that is there is no flag.
bool parse_motion_required(const Member& flag, Faults& faults) {
  return flag.is_there() &&
         faults.require(flag->isBool(), flag,
                        "An object-detection source has an invalid \"motionRequired\" field.") &&
         flag->asBool();
}

/// Leaves nothing when it has no object type.
void parse_search_item(const Member& item, std::optional<Object_Search_Item>& parsed,
                       Faults& faults) {
  // The quote at the end belongs to the message: operators' tools look for this very text.
  if (!faults.require(item->isObject(), item, "\"searchItem\" object is missing or invalid.\"")) {
    return;
  }
  Member type, motion_required;
  find_members(*item, {{"motionRequired", motion_required}, {"type", type}});
  parsed.emplace();
  parsed->object_type = parse_object_type(type, faults);
  parsed->motion_required = parse_motion_required(motion_required, faults);
  if (parsed->object_type.empty()) {
    parsed.reset();
  }
}

/// Whether the source has what the ordering of its kind compares.
bool is_comparable(const Trigger_Source& source) {
  switch (source.type) {
    case Trigger_Source_Type::onvif_metadata:
      return source.onvif_topic.has_value();
    case Trigger_Source_Type::object_detection:
      return source.search_item.has_value();
    default:
      return true;
  }
}

/// One source; nothing when it is dropped, and when it is too faulty to be compared with others.
std::optional<Trigger_Source> parse_source(const Member& source, const Letters& letters,
                                           Faults& faults) {
  std::optional<Trigger_Source> parsed;
  if (!faults.require(source->isObject(), source,
                      "\"sources\" must be an array of JSON objects.")) {
    return parsed;
  }
  Member type_name, onvif_topic, search_item, activity_duration;
  find_members(*source, {{"activityDuration", activity_duration},
                         {"onvifTopic", onvif_topic},
                         {"searchItem", search_item},
                         {"type", type_name}});
  const std::optional<Trigger_Source_Type> type = parse_type(type_name, letters, faults);
  if (!is_kept(type)) {
    return parsed;
  }
  parsed.emplace();
  parsed->type = *type;
  if (*type == Trigger_Source_Type::onvif_metadata) {
    parse_onvif_topic(onvif_topic, parsed->onvif_topic, faults);
  } else if (*type == Trigger_Source_Type::object_detection) {
    parse_search_item(search_item, parsed->search_item, faults);
    parsed->activity_duration = parse_activity_duration(activity_duration, *type, faults);
  } else if (*type == Trigger_Source_Type::motion_detection) {
    parsed->activity_duration = parse_activity_duration(activity_duration, *type, faults);
  }
  if (!is_comparable(*parsed)) {
    parsed.reset();
  }
  return parsed;
}

}  // namespace

std::set<Trigger_Source> parse_sources(const Member& sources, const Letters& letters,
                                       Faults& faults) {
  std::set<Trigger_Source> parsed;
  if (!faults.require(sources->isArray(), sources, "\"sources\" array is missing or invalid.") ||
      !faults.require(!sources->empty(), sources, "\"sources\" array is empty.")) {
    return parsed;
  }
  for (const auto& [index, element] : kuv::utils::Json_Elements(*sources)) {
    std::optional<Trigger_Source> source = parse_source(Member(element, *sources), letters, faults);
    if (source) {
      faults.require(parsed.insert(std::move(*source)).second, element,
                     "Duplicate entry in \"sources\" detected.");
    }
  }
  return parsed;
}

}  // namespace kuv::vemora
