// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/fault_places.h"

#include <stdexcept>
#include <utility>

namespace kuv::test {
namespace {

using Read_By = Fault_Sample::Read_By;

/// `marked` is the document with an "@" before what is wrong.
Fault_Sample sample(std::string name, Read_By read_by, std::string marked, std::string message) {
  const std::size_t place = marked.find('@');
  if (place == std::string::npos) {
    throw std::invalid_argument("no place is marked: " + marked);
  }
  marked.erase(place, 1);
  return {std::move(name), read_by, std::move(marked), place, std::move(message)};
}

class Samples {
 public:
  void add(std::string name, std::string marked, std::string message) {
    all.push_back(
        sample(std::move(name), Read_By::triggers, std::move(marked), std::move(message)));
  }

  /// Of a configuration with this trigger behind a valid one.
  void add_trigger(std::string name, const std::string& marked, std::string message) {
    add(std::move(name),
        "{\"triggers\": [\n{\"id\": 6, \"name\": \"\", \"tags\": {},"
        " \"sources\": [{\"type\": \"metadata-event\"}]},\n" +
            marked + "\n]}",
        std::move(message));
  }

  void add_tags(std::string name, const std::string& marked, std::string message) {
    add_trigger(std::move(name),
                R"({"id": 7, "name": "", "tags": {)" + marked +
                    R"(}, "sources": [{"type": "metadata-event"}]})",
                std::move(message));
  }

  void add_source(std::string name, const std::string& marked, std::string message) {
    add_trigger(std::move(name),
                R"({"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}, )" +
                    marked + "]}",
                std::move(message));
  }

  void add_duration(std::string name, const std::string& marked, std::string message) {
    add_source(std::move(name),
               R"({"type": "object-detection", "searchItem": {"type": "car"},)"
               R"( "activityDuration": )" +
                   marked + "}",
               std::move(message));
  }

  void add_schedules(std::string name, const std::string& marked, std::string message) {
    add_trigger(std::move(name),
                R"({"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}],)"
                R"( "scheduleIds": )" +
                    marked + "}",
                std::move(message));
  }

  void add_properties(std::string name, std::string marked, std::string message) {
    all.push_back(
        sample(std::move(name), Read_By::properties, std::move(marked), std::move(message)));
  }

  void add_mapping(std::string name, std::string marked, std::string message) {
    all.push_back(sample(std::move(name), Read_By::mapping, std::move(marked), std::move(message)));
  }

  void add_association(std::string name, const std::string& marked, std::string message) {
    add_mapping(
        std::move(name),
        "{\"triggerMapping\": [{\"scheduleIds\": [], \"triggerIds\": [1]},\n" + marked + "]}",
        std::move(message));
  }

  std::vector<Fault_Sample> all;
};

void add_documents(Samples& samples) {
  const char* const no_object = "Trigger configuration must be a JSON object.";
  samples.add("configuration_is_an_array", "@[]", no_object);
  samples.add("configuration_is_null", " @null", no_object);
  samples.add_properties("configuration_without_properties_is_an_array", "\n@[]", no_object);
  samples.add("no_list_of_triggers", " @{\"properties\": {}}", "Missing \"triggers\" array.");
  samples.add("list_of_triggers_is_null", "{\"triggers\": @null}", "Missing \"triggers\" array.");
  samples.add("list_of_triggers_is_a_text", "{\"triggers\": @\"7\"}",
              "Missing \"triggers\" array.");
  samples.add_trigger("trigger_is_a_number", "@7",
                      "\"triggers\" must be an array of JSON objects.");
  samples.add_trigger("trigger_is_a_list", "@[]", "\"triggers\" must be an array of JSON objects.");
}

void add_triggers(Samples& samples) {
  const std::string rest = R"("name": "", "tags": {}, "sources": [{"type": "metadata-event"}]})";
  samples.add_trigger("no_id", "@{" + rest, "\"id\" field is missing or invalid.");
  samples.add_trigger("id_is_negative", "{\"id\": @-7, " + rest,
                      "\"id\" field is missing or invalid.");
  samples.add_trigger("id_is_null", "{\"id\": @null, " + rest,
                      "\"id\" field is missing or invalid.");
  samples.add_trigger("id_twice", "{\"id\": @6, " + rest,
                      "All \"id\" values must be unique, 6 is duplicated.");
  const std::string sources = R"("sources": [{"type": "metadata-event"}])";
  samples.add_trigger("no_name", R"(@{"id": 7, "tags": {}, )" + sources + "}",
                      "\"name\" field is missing or invalid.");
  samples.add_trigger("name_is_a_number", R"({"id": 7, "name": @12, "tags": {}, )" + sources + "}",
                      "\"name\" field is missing or invalid.");
  samples.add_trigger("no_tags", R"(@{"id": 7, "name": "", )" + sources + "}",
                      "\"tags\" must be a JSON object.");
  samples.add_trigger("tags_are_a_list", R"({"id": 7, "name": "", "tags": @[], )" + sources + "}",
                      "\"tags\" must be a JSON object.");
  samples.add_trigger("any_time_is_a_text",
                      R"({"id": 7, "name": "", "tags": {}, "anyTime": @"yes", )" + sources + "}",
                      "\"anyTime\" field is invalid.");
}

void add_tag_filters(Samples& samples) {
  const char* const no_object = "A tag filter must be a JSON object.";
  samples.add_tags("server_filter_is_a_list", R"("server": @["north"])", no_object);
  samples.add_tags("camera_filter_is_a_text", R"("server": {}, "camera": @"gate")", no_object);
  samples.add_tags("subscription_filter_is_a_flag", R"("eventSubscription": @true)", no_object);
  samples.add_tags("tag_is_a_number", R"("camera": {"area": "gate", "floor": @3})",
                   "Tag \"floor\" must be a string, null or an array of them.");
  samples.add_tags("tag_is_an_object", R"("eventSubscription": {"door": @{}})",
                   "Tag \"door\" must be a string, null or an array of them.");
  samples.add_tags("tag_has_no_values", R"("server": {"site": @[]})",
                   "Tag \"site\" has an empty array.");
  samples.add_tags("value_of_a_tag_is_a_number", R"("server": {"site": ["north", null, @7]})",
                   "Tag \"site\" must be an array of strings and nulls.");
}

void add_schedules(Samples& samples) {
  const char* const no_list = "\"scheduleIds\" array is missing or invalid.";
  const char* const no_id = "\"scheduleIds\" must be an array of unsigned integers.";
  samples.add_schedules("schedules_are_a_number", "@3", no_list);
  samples.add_schedules("schedules_are_an_object", "@{}", no_list);
  samples.add_schedules("schedule_is_a_text", "[1, @\"2\", 3]", no_id);
  samples.add_schedules("schedule_is_null", "[@null]", no_id);
}

void add_sources(Samples& samples) {
  const std::string beginning = R"({"id": 7, "name": "", "tags": {})";
  samples.add_trigger("no_sources", "@" + beginning + "}",
                      "\"sources\" array is missing or invalid.");
  samples.add_trigger("sources_are_an_object", beginning + R"(, "sources": @{}})",
                      "\"sources\" array is missing or invalid.");
  samples.add_trigger("sources_are_empty", beginning + R"(, "sources": @[]})",
                      "\"sources\" array is empty.");
  samples.add_source("source_is_a_text", R"(@"metadata-event")",
                     "\"sources\" must be an array of JSON objects.");
  samples.add_source("no_type", R"(@{"onvifTopic": "a"})",
                     "\"type\" field is missing or invalid for source.");
  samples.add_source("type_is_a_number", R"({"type": @1})",
                     "\"type\" field is missing or invalid for source.");
  samples.add_source("no_topic", R"(@{"type": "onvif-metadata"})",
                     "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.");
  samples.add_source("topic_is_a_list", R"({"type": "onvif-metadata", "onvifTopic": @["a"]})",
                     "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.");
  samples.add_source("topic_is_empty", R"({"type": "onvif-metadata", "onvifTopic": @""})",
                     "An onvif-metadata source has an \"onvifTopic\" field with an empty string.");
  samples.add_source("source_twice", R"(@{"type": "metadata-event"})",
                     "Duplicate entry in \"sources\" detected.");
}

void add_search_items(Samples& samples) {
  const std::string beginning = R"({"type": "object-detection")";
  samples.add_source("no_search_item", "@" + beginning + "}",
                     "\"searchItem\" object is missing or invalid.\"");
  samples.add_source("search_item_is_a_text", beginning + R"(, "searchItem": @"car"})",
                     "\"searchItem\" object is missing or invalid.\"");
  samples.add_source("no_object_type", beginning + R"(, "searchItem": @{}})",
                     "An object-detection source has a missing or invalid object type.");
  samples.add_source("object_type_is_null", beginning + R"(, "searchItem": {"type": @null}})",
                     "An object-detection source has a missing or invalid object type.");
  samples.add_source("object_type_is_empty", beginning + R"(, "searchItem": {"type": @""}})",
                     "An object-detection source has an empty object type specified.");
  samples.add_source("motion_flag_is_null",
                     beginning + R"(, "searchItem": {"type": "car", "motionRequired": @null}})",
                     "An object-detection source has an invalid \"motionRequired\" field.");
}

void add_durations(Samples& samples) {
  samples.add_duration("duration_is_a_number", "@5000",
                       "\"activityDuration\" must be a JSON object.");
  samples.add_duration("mode_is_a_number",
                       R"({"mode": @1, "minDurationMs": 5000, "dropoutMs": 1000})",
                       "\"activityDuration.mode\" must be a string.");
  samples.add_duration("mode_is_unknown", R"({"mode": @"Object-Track", "minDurationMs": 5000})",
                       "\"activityDuration.mode\" must be \"object-presence\" or "
                       "\"object-track\".");
  samples.add_duration("no_least_duration", R"(@{"dropoutMs": 1000})",
                       "\"activityDuration.minDurationMs\" is missing or invalid.");
  samples.add_duration("least_duration_is_zero", R"({"minDurationMs": @0, "dropoutMs": 1000})",
                       "\"activityDuration.minDurationMs\" is missing or invalid.");
  samples.add_duration("least_duration_is_too_short",
                       R"({"minDurationMs": @999, "dropoutMs": 1000})",
                       "\"activityDuration.minDurationMs\" must be between 1000 and 28800000.");
  samples.add_duration("no_dropout", R"(@{"minDurationMs": 5000})",
                       "\"activityDuration.dropoutMs\" is missing or invalid.");
  samples.add_duration("dropout_is_null", R"({"minDurationMs": 5000, "dropoutMs": @null})",
                       "\"activityDuration.dropoutMs\" is missing or invalid.");
  samples.add_duration("dropout_is_a_text", R"({"minDurationMs": 5000, "dropoutMs": @"5"})",
                       "\"activityDuration.dropoutMs\" must be an unsigned integer.");
  samples.add_duration("dropout_is_too_long", R"({"minDurationMs": 5000, "dropoutMs": @600001})",
                       "\"activityDuration.dropoutMs\" must be between 1000 and 600000.");
  samples.add_source("no_dropout_of_motion",
                     R"({"type": "motion-detection", "activityDuration":)"
                     R"( @{"mode": "object-track", "minDurationMs": 5000}})",
                     "\"activityDuration.dropoutMs\" is missing or invalid.");
}

void add_properties(Samples& samples) {
  samples.add_properties("properties_are_a_list", R"({"properties": @[]})",
                         "\"properties\" must be a JSON object.");
  for (const std::string key : {"notificationMaxLatencySecs", "notificationDigestCooldownMins",
                                "notificationAckTimeoutSecs", "notificationNackDelayMs"}) {
    samples.add_properties(key, "{\"properties\": {\"" + key + "\": @-1}}",
                           "\"properties." + key + "\" must be an unsigned integer.");
  }
}

void add_associations(Samples& samples) {
  samples.add_mapping("mapping_is_a_list", " @[]", "Trigger mapping must be a JSON object.");
  samples.add_mapping("no_list_of_associations", "\n@{}",
                      "\"triggerMapping\" array is missing or invalid.");
  samples.add_mapping("list_of_associations_is_an_object", "{\"triggerMapping\": @{}}",
                      "\"triggerMapping\" array is missing or invalid.");
  samples.add_association("association_is_a_number", "@5",
                          "\"triggerMapping\" must be an array of JSON objects.");
  samples.add_association("association_without_schedules", R"(@{"triggerIds": [1]})",
                          "\"scheduleIds\" array is missing or invalid.");
  samples.add_association("schedules_of_an_association_are_null",
                          R"({"scheduleIds": @null, "triggerIds": [1]})",
                          "\"scheduleIds\" array is missing or invalid.");
  samples.add_association("schedule_of_an_association_is_negative",
                          R"({"scheduleIds": [1, @-1], "triggerIds": [1]})",
                          "\"scheduleIds\" must be an array of unsigned integers.");
  samples.add_association("association_without_triggers", R"(@{"scheduleIds": []})",
                          "\"triggerIds\" array is missing or invalid.");
  samples.add_association("triggers_of_an_association_are_a_number",
                          R"({"scheduleIds": [], "triggerIds": @1})",
                          "\"triggerIds\" array is missing or invalid.");
  samples.add_association("association_of_no_triggers", R"({"scheduleIds": [], "triggerIds": @[]})",
                          "\"triggerIds\" array is empty.");
  samples.add_association("trigger_of_an_association_is_a_fraction",
                          R"({"scheduleIds": [], "triggerIds": [1, @2.5]})",
                          "\"triggerIds\" must be an array of unsigned integers.");
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Fault_Sample& sample) {
  return stream << sample.name;
}

const std::vector<Fault_Sample>& fault_samples() {
  static const std::vector<Fault_Sample> all = [] {
    Samples samples;
    add_documents(samples);
    add_triggers(samples);
    add_tag_filters(samples);
    add_schedules(samples);
    add_sources(samples);
    add_search_items(samples);
    add_durations(samples);
    add_properties(samples);
    add_associations(samples);
    return std::move(samples.all);
  }();
  return all;
}

}  // namespace kuv::test
