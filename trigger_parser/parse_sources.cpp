#include "trigger_parser/parse_sources.h"

#include <locale>
#include <optional>
#include <string>
#include <utility>

#include "trigger_parser/find_members.h"
#include "trigger_parser/parse_activity_duration.h"
#include "trigger_parser/validation.h"
#include "vemora/platform/database_enums.h"

namespace kuv::vemora {
namespace {

using Letters = std::ctype<char>;

/// A type that this server does not know is no fault: configurations are shared with newer servers,
/// and the source is theirs.
std::optional<Trigger_Source_Type> parse_type(const Json::Value& type, const Letters& letters) {
  require(type.isString(), "\"type\" field is missing or invalid for source.");
  std::string name = type.asString();
  for (char& character : name) {
    character = letters.tolower(character);
  }
  try {
    return Database_Enums::convert<Trigger_Source_Type>(name);
  } catch (...) {
    return std::nullopt;
  }
}

std::string parse_onvif_topic(const Json::Value& topic) {
  require(topic.isString(),
          "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.");
  std::string text = topic.asString();
  require(!text.empty(),
          "An onvif-metadata source has an \"onvifTopic\" field with an empty string.");
  return text;
}

Object_Search_Item parse_search_item(const Json::Value& item) {
  // The quote at the end belongs to the message: operators' tools look for this very text.
  require(item.isObject(), "\"searchItem\" object is missing or invalid.\"");
  const auto [type, motion_required] = find_members(item, "type", "motionRequired");
  require(type->isString(), "An object-detection source has a missing or invalid object type.");
  Object_Search_Item parsed;
  parsed.object_type = type->asString();
  require(!parsed.object_type.empty(),
          "An object-detection source has an empty object type specified.");
  if (motion_required != &Json::Value::nullSingleton()) {  // a null that is there is no flag
    require(motion_required->isBool(),
            "An object-detection source has an invalid \"motionRequired\" field.");
    parsed.motion_required = motion_required->asBool();
  }
  return parsed;
}

/// One source; nothing when it is dropped.
std::optional<Trigger_Source> parse_source(const Json::Value& source, const Letters& letters) {
  require(source.isObject(), "\"sources\" must be an array of JSON objects.");
  const auto [type_name, topic, item, duration] =
      find_members(source, "type", "onvifTopic", "searchItem", "activityDuration");
  const std::optional<Trigger_Source_Type> type = parse_type(*type_name, letters);
  std::optional<Trigger_Source> parsed;
  if (!type || *type == Trigger_Source_Type::external) {
    return parsed;  // external sources fire by themselves, there is nothing to subscribe to
  }
  parsed.emplace();
  parsed->type = *type;
  if (*type == Trigger_Source_Type::onvif_metadata) {
    parsed->onvif_topic = parse_onvif_topic(*topic);
  } else if (*type == Trigger_Source_Type::object_detection) {
    parsed->search_item = parse_search_item(*item);
    parsed->activity_duration = parse_activity_duration(*duration, *type);
  } else if (*type == Trigger_Source_Type::motion_detection) {
    parsed->activity_duration = parse_activity_duration(*duration, *type);
  }
  return parsed;
}

}  // namespace

std::set<Trigger_Source> parse_sources(const Json::Value& sources) {
  require(sources.isArray(), "\"sources\" array is missing or invalid.");
  require(!sources.empty(), "\"sources\" array is empty.");
  const std::locale locale;
  const auto& letters = std::use_facet<Letters>(locale);
  std::set<Trigger_Source> parsed;
  for (const Json::Value& element : sources) {
    std::optional<Trigger_Source> source = parse_source(element, letters);
    if (source) {
      require(parsed.insert(std::move(*source)).second, "Duplicate entry in \"sources\" detected.");
    }
  }
  return parsed;
}

}  // namespace kuv::vemora
