// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/parse_sources.h"

#include <optional>
#include <string>
#include <utility>

#include "vemora/platform/utils/json_elements.h"
#include "vemora/trigger_parser/members.h"
#include "vemora/trigger_parser/parse_activity_duration.h"
#include "vemora/trigger_parser/source_types.h"

namespace kuv::vemora {
namespace {

/// A type that this server does not know is no fault: configurations are shared with newer servers,
/// and the source is theirs.
std::optional<Trigger_Source_Type> parse_type(const Member& type, Source_Types& types,
                                              Faults& faults) {
  const auto name = text_of(*type);
  if (!faults.require(name.has_value(), type, "\"type\" field is missing or invalid for source.")) {
    return std::nullopt;
  }
  return types.type_of(*name);
}

/// Leaves nothing when it is no topic.
void parse_onvif_topic(const Member& topic, std::optional<std::string>& parsed, Faults& faults) {
  const auto name = text_of(*topic);
  if (faults.require(name.has_value(), topic,
                     "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.") &&
      faults.require(
          !name->empty(), topic,
          "An onvif-metadata source has an \"onvifTopic\" field with an empty string.")) {
    parsed.emplace(*name);
  }
}

/// Empty when it is no object type.
std::string parse_object_type(const Member& type, Faults& faults) {
  const auto name = text_of(*type);
  if (!faults.require(name.has_value(), type,
                      "An object-detection source has a missing or invalid object type.")) {
    return {};
  }
  faults.require(!name->empty(), type,
                 "An object-detection source has an empty object type specified.");
  return std::string(*name);
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
  find_members(*item, Wanted{"type", type}, Wanted{"motionRequired", motion_required});
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

/// One source; false when it is dropped, and when it is too faulty to be compared with others.
bool parse_source(const Member& source, Source_Types& types, Trigger_Source& parsed,
                  Faults& faults) {
  if (!faults.require(source->isObject(), source,
                      "\"sources\" must be an array of JSON objects.")) {
    return false;
  }
  Member type_name, onvif_topic, search_item, activity_duration;
  find_members(*source, Wanted{"type", type_name}, Wanted{"onvifTopic", onvif_topic},
               Wanted{"searchItem", search_item}, Wanted{"activityDuration", activity_duration});
  const std::optional<Trigger_Source_Type> type = parse_type(type_name, types, faults);
  if (!is_kept(type)) {
    return false;
  }
  parsed.type = *type;
  if (*type == Trigger_Source_Type::onvif_metadata) {
    parse_onvif_topic(onvif_topic, parsed.onvif_topic, faults);
  } else if (*type == Trigger_Source_Type::object_detection) {
    parse_search_item(search_item, parsed.search_item, faults);
    parsed.activity_duration = parse_activity_duration(activity_duration, *type, faults);
  } else if (*type == Trigger_Source_Type::motion_detection) {
    parsed.activity_duration = parse_activity_duration(activity_duration, *type, faults);
  }
  return is_comparable(parsed);
}

/// False when such a source is among them already.
bool add_source(Trigger_Source&& source, std::set<Trigger_Source>& sources) {
  const std::size_t before = sources.size();
  sources.insert(sources.end(), std::move(source));  // a document mostly has them in order
  return sources.size() > before;
}

}  // namespace

std::set<Trigger_Source> parse_sources(const Member& sources, Source_Types& types, Faults& faults) {
  std::set<Trigger_Source> parsed;
  if (!faults.require(sources->isArray(), sources, "\"sources\" array is missing or invalid.") ||
      !faults.require(!sources->empty(), sources, "\"sources\" array is empty.")) {
    return parsed;
  }
  for (const auto& [index, element] : kuv::utils::Json_Elements(*sources)) {
    Trigger_Source source;
    if (parse_source(Member(element, *sources), types, source, faults)) {
      faults.require(add_source(std::move(source), parsed), element,
                     "Duplicate entry in \"sources\" detected.");
    }
  }
  return parsed;
}

}  // namespace kuv::vemora
