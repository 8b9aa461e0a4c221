// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include "trigger_parser/parser_test.h"

namespace kuv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr char no_sources[] = "\"sources\" array is missing or invalid.";
constexpr char empty_sources[] = "\"sources\" array is empty.";
constexpr char sources_not_objects[] = "\"sources\" must be an array of JSON objects.";
constexpr char bad_type[] = "\"type\" field is missing or invalid for source.";
constexpr char bad_topic[] =
    "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.";
constexpr char empty_topic[] =
    "An onvif-metadata source has an \"onvifTopic\" field with an empty string.";
constexpr char bad_search_item[] = "\"searchItem\" object is missing or invalid.\"";
constexpr char bad_object_type[] =
    "An object-detection source has a missing or invalid object type.";
constexpr char empty_object_type[] =
    "An object-detection source has an empty object type specified.";
constexpr char bad_motion_required[] =
    "An object-detection source has an invalid \"motionRequired\" field.";
constexpr char duplicate_source[] = "Duplicate entry in \"sources\" detected.";

struct Parse_Sources : Parser_Test {
  Rejection rejection_of_sources(const std::string& sources) {
    return rejection_of_configs(configuration({a_trigger_with_sources(sources)}));
  }

  std::set<Trigger_Source> parse_sources(const std::string& sources) {
    return parse_only_config(configuration({a_trigger_with_sources(sources)})).sources;
  }

  std::vector<Trigger_Source_Type> types_of(const std::string& sources) {
    std::vector<Trigger_Source_Type> types;
    for (const Trigger_Source& source : parse_sources(sources)) {
      types.push_back(source.type);
    }
    return types;
  }
};

void expect_nothing_but_a_type(const Trigger_Source& source) {
  EXPECT_FALSE(source.onvif_topic);
  EXPECT_FALSE(source.search_item);
  EXPECT_FALSE(source.activity_duration);
}

// The array

TEST_F(Parse_Sources, rejects_sources_that_are_missing_or_no_array) {
  EXPECT_EQ(rejection_of_configs(configuration({without(a_trigger(), "sources")})), no_sources);
  for (const char* text : {"null", "{}", R"({"type": "metadata-event"})", "5", "\"\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_sources(text), no_sources);
  }
}

TEST_F(Parse_Sources, rejects_an_empty_array) {
  EXPECT_EQ(rejection_of_sources("[]"), empty_sources);
}

TEST_F(Parse_Sources, rejects_an_element_that_is_no_object) {
  for (const char* text : {"null", "5", "\"metadata-event\"", "[]", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_source(text), sources_not_objects);
    EXPECT_EQ(rejection_of_sources(std::string(R"([{"type": "metadata-event"}, )") + text + "]"),
              sources_not_objects);
  }
}

TEST_F(Parse_Sources, tells_the_fault_of_the_first_faulty_source) {
  EXPECT_EQ(rejection_of_sources(R"([{"type": 5}, 5])"), bad_type);
  EXPECT_EQ(rejection_of_sources(R"([5, {"type": 5}])"), sources_not_objects);
  EXPECT_EQ(rejection_of_sources(R"([{"type": "metadata-event"}, {"type": "metadata-event"}, 5])"),
            duplicate_source);
  EXPECT_EQ(rejection_of_sources(R"([{"type": "smell-detection"}, 5])"), sources_not_objects);
}

// "type"

TEST_F(Parse_Sources, rejects_a_type_that_is_missing_or_no_string) {
  EXPECT_EQ(rejection_of_source("{}"), bad_type);
  EXPECT_EQ(rejection_of_source(R"({"onvifTopic": "a"})"), bad_type);
  for (const char* text : {"null", "0", "2", "true", "[]", "{}", R"(["metadata-event"])"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_source(std::string("{\"type\": ") + text + "}"), bad_type);
  }
}

TEST_F(Parse_Sources, knows_every_type_by_its_name) {
  EXPECT_THAT(
      types_of(R"([
      {"type": "audio-detection"},
      {"type": "motion-detection"},
      {"type": "object-detection", "searchItem": {"type": "person"}},
      {"type": "metadata-event"},
      {"type": "onvif-metadata", "onvifTopic": "a"}])"),
      ElementsAre(Trigger_Source_Type::onvif_metadata, Trigger_Source_Type::metadata_event,
                  Trigger_Source_Type::object_detection, Trigger_Source_Type::motion_detection,
                  Trigger_Source_Type::audio_detection));
}

TEST_F(Parse_Sources, knows_a_type_whatever_the_case_of_its_letters) {
  EXPECT_EQ(parse_source(R"({"type": "ONVIF-Metadata", "onvifTopic": "a"})").type,
            Trigger_Source_Type::onvif_metadata);
  EXPECT_EQ(parse_source(R"({"type": "Metadata-EVENT"})").type,
            Trigger_Source_Type::metadata_event);
  EXPECT_EQ(parse_source(R"({"type": "OBJECT-DETECTION", "searchItem": {"type": "x"}})").type,
            Trigger_Source_Type::object_detection);
  EXPECT_EQ(parse_source(R"({"type": "Motion-Detection"})").type,
            Trigger_Source_Type::motion_detection);
  EXPECT_EQ(parse_source(R"({"type": "aUDIO-dETECTION"})").type,
            Trigger_Source_Type::audio_detection);
  EXPECT_THAT(types_of(R"([{"type": "External"}, {"type": "metadata-event"}])"),
              ElementsAre(Trigger_Source_Type::metadata_event));
}

/// A character classification of its own: '#' is the capital of 'e'.
struct Hash_Is_Capital_E : std::ctype<char> {
  char do_tolower(char character) const override {
    return character == '#' ? 'e' : std::ctype<char>::do_tolower(character);
  }
};

TEST_F(Parse_Sources, lowers_the_letters_of_a_type_as_the_default_locale_does) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new Hash_Is_Capital_E));

  const std::set<Trigger_Source> sources = parse_sources(R"([{"type": "M#TADATA-#VENT"}])");

  std::locale::global(before);
  ASSERT_THAT(sources, SizeIs(1));
  EXPECT_EQ(sources.begin()->type, Trigger_Source_Type::metadata_event);
}

TEST_F(Parse_Sources, skips_a_source_of_a_type_that_it_does_not_know) {
  for (const char* type : {"smell-detection", "", "onvif_metadata", " metadata-event", "1",
                           "\\u0000", "metadata-event\\u0000", "m\u00e9tadata-event", "\u00c9"}) {
    SCOPED_TRACE(type);
    EXPECT_THAT(types_of(std::string("[{\"type\": \"") + type +
                         R"(", "onvifTopic": 5, "searchItem": 5, "activityDuration": 5},
                             {"type": "audio-detection"}])"),
                ElementsAre(Trigger_Source_Type::audio_detection));
  }
}

TEST_F(Parse_Sources, skips_external_sources_without_looking_at_their_fields) {
  EXPECT_THAT(types_of(R"([{"type": "external", "onvifTopic": 5, "searchItem": 5,
                            "activityDuration": 5},
                           {"type": "audio-detection"}])"),
              ElementsAre(Trigger_Source_Type::audio_detection));
}

TEST_F(Parse_Sources, does_not_count_skipped_sources_as_duplicates) {
  EXPECT_THAT(types_of(R"([{"type": "external"}, {"type": "external"},
                           {"type": "smell-detection"}, {"type": "smell-detection"},
                           {"type": "metadata-event"}])"),
              ElementsAre(Trigger_Source_Type::metadata_event));
}

// Sources without fields of their own

TEST_F(Parse_Sources, gives_a_metadata_event_or_audio_source_nothing_but_its_type) {
  for (const char* type : {"metadata-event", "audio-detection"}) {
    SCOPED_TRACE(type);
    expect_nothing_but_a_type(parse_source(std::string("{\"type\": \"") + type + "\"}"));
    expect_nothing_but_a_type(
        parse_source(std::string("{\"type\": \"") + type +
                     R"(", "onvifTopic": "a", "searchItem": {"type": "person"},
                        "activityDuration": {"minDurationMs": 5000, "dropoutMs": 1000}})"));
    expect_nothing_but_a_type(
        parse_source(std::string("{\"type\": \"") + type +
                     R"(", "onvifTopic": 5, "searchItem": 5, "activityDuration": 5})"));
  }
}

// ONVIF sources

TEST_F(Parse_Sources, takes_a_topic_as_it_is_written) {
  using namespace std::string_literals;
  const auto topic_of = [&](const std::string& text) {
    return parse_source(R"({"type": "onvif-metadata", "onvifTopic": ")" + text + "\"}").onvif_topic;
  };

  EXPECT_EQ(topic_of("tns1:RuleEngine/CellMotionDetector/Motion"),
            "tns1:RuleEngine/CellMotionDetector/Motion");
  EXPECT_EQ(topic_of("tns1:IVA/EnteringField/T\u00fcr//."), "tns1:IVA/EnteringField/T\u00fcr//.");
  EXPECT_EQ(topic_of(" "), " ");
  EXPECT_EQ(topic_of("\\u0000"), "\0"s);
  EXPECT_EQ(topic_of("a\\u0000b"), "a\0b"s);
}

TEST_F(Parse_Sources, reads_nothing_but_the_topic_of_an_onvif_source) {
  const Trigger_Source source = parse_source(R"({"type": "onvif-metadata", "onvifTopic": "a",
      "searchItem": 5, "activityDuration": 5})");

  EXPECT_EQ(source.onvif_topic, "a");
  EXPECT_FALSE(source.search_item);
  EXPECT_FALSE(source.activity_duration);
}

TEST_F(Parse_Sources, rejects_a_topic_that_is_missing_or_no_string) {
  EXPECT_EQ(rejection_of_source(R"({"type": "onvif-metadata"})"), bad_topic);
  for (const char* text : {"null", "5", "true", "{}", "[]", R"(["a"])"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_source(std::string(R"({"type": "onvif-metadata", "onvifTopic": )") +
                                  text + "}"),
              bad_topic);
  }
}

TEST_F(Parse_Sources, rejects_an_empty_topic) {
  EXPECT_EQ(rejection_of_source(R"({"type": "onvif-metadata", "onvifTopic": ""})"), empty_topic);
}

TEST_F(Parse_Sources, keeps_topics_apart_byte_for_byte) {
  const Trigger_Config config = parse_only_config(configuration({a_trigger_with_sources(R"([
      {"type": "onvif-metadata", "onvifTopic": "b"},
      {"type": "onvif-metadata", "onvifTopic": "a\u0000"},
      {"type": "onvif-metadata", "onvifTopic": "a"},
      {"type": "onvif-metadata", "onvifTopic": "\u00e4"},
      {"type": "onvif-metadata", "onvifTopic": "A"}])")}));
  using namespace std::string_literals;

  EXPECT_THAT(config.all_source_topics(), ElementsAre("A", "a", "a\0"s, "b", "\u00e4"));
}

// Object-detection sources

TEST_F(Parse_Sources, takes_what_object_detection_searches_for) {
  const Trigger_Source plain =
      parse_source(R"({"type": "object-detection", "searchItem": {"type": "person"}})");
  EXPECT_EQ(plain.search_item->object_type, "person");
  EXPECT_FALSE(plain.search_item->motion_required);
  EXPECT_FALSE(plain.onvif_topic);
  EXPECT_FALSE(plain.activity_duration);

  const Trigger_Source moving = parse_source(
      R"({"type": "object-detection", "searchItem": {"type": "person", "motionRequired": true}})");
  EXPECT_TRUE(moving.search_item->motion_required);

  const Trigger_Source still = parse_source(
      R"({"type": "object-detection", "searchItem": {"type": "person", "motionRequired": false}})");
  EXPECT_FALSE(still.search_item->motion_required);
}

TEST_F(Parse_Sources, does_not_read_the_topic_of_an_object_detection_source) {
  EXPECT_FALSE(parse_source(R"({"type": "object-detection", "searchItem": {"type": "person"},
                               "onvifTopic": "a"})")
                   .onvif_topic);
}

TEST_F(Parse_Sources, takes_any_object_type_that_is_not_empty) {
  using namespace std::string_literals;
  const auto object_type = [&](const std::string& text) {
    return parse_source(R"({"type": "object-detection", "searchItem": {"type": ")" + text + "\"}}")
        .search_item->object_type;
  };

  EXPECT_EQ(object_type("Person"), "Person");
  EXPECT_EQ(object_type(" "), " ");
  EXPECT_EQ(object_type("\\u0000"), "\0"s);
  EXPECT_EQ(object_type("v\u00e9hicule"), "v\u00e9hicule");
}

TEST_F(Parse_Sources, rejects_a_search_item_that_is_missing_or_no_object) {
  EXPECT_EQ(rejection_of_source(R"({"type": "object-detection"})"), bad_search_item);
  for (const char* text : {"null", "5", "true", "\"person\"", "[]"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_source(std::string(R"({"type": "object-detection", "searchItem": )") +
                                  text + "}"),
              bad_search_item);
  }
}

TEST_F(Parse_Sources, rejects_an_object_type_that_is_missing_or_no_string) {
  for (const char* item : {"{}", R"({"type": null})", R"({"type": 5})", R"({"type": true})",
                           R"({"type": ["person"]})", R"({"type": {}})"}) {
    SCOPED_TRACE(item);
    EXPECT_EQ(rejection_of_source(std::string(R"({"type": "object-detection", "searchItem": )") +
                                  item + "}"),
              bad_object_type);
  }
}

TEST_F(Parse_Sources, rejects_an_empty_object_type) {
  EXPECT_EQ(rejection_of_source(R"({"type": "object-detection", "searchItem": {"type": ""}})"),
            empty_object_type);
}

TEST_F(Parse_Sources, rejects_a_motion_flag_that_is_no_bool) {
  for (const char* text : {"null", "0", "1", "\"true\"", "[]", "{}"}) {
    SCOPED_TRACE(text);
    const std::string item = std::string(R"({"type": "car", "motionRequired": )") + text + "}";
    EXPECT_EQ(rejection_of_source(R"({"type": "object-detection", "searchItem": )" + item + "}"),
              bad_motion_required);
  }
}

TEST_F(Parse_Sources, tells_the_first_fault_of_an_object_detection_source) {
  Json::Value source = json(R"({"type": "object-detection", "searchItem": 5,
                                "activityDuration": 5})");
  const auto next_fault = [&] { return rejection_of_source(source.toStyledString()); };

  EXPECT_EQ(next_fault(), bad_search_item);
  source["searchItem"] = json(R"({"type": 5, "motionRequired": 5})");
  EXPECT_EQ(next_fault(), bad_object_type);
  source["searchItem"]["type"] = "";
  EXPECT_EQ(next_fault(), empty_object_type);
  source["searchItem"]["type"] = "car";
  EXPECT_EQ(next_fault(), bad_motion_required);
  source["searchItem"]["motionRequired"] = true;
  EXPECT_EQ(next_fault(), "\"activityDuration\" must be a JSON object.");
  source["activityDuration"] = Json::nullValue;
  EXPECT_EQ(next_fault(), "accepted");
}

// Duplicates

TEST_F(Parse_Sources, rejects_a_topic_given_twice) {
  EXPECT_EQ(rejection_of_sources(R"([{"type": "onvif-metadata", "onvifTopic": "a"},
                                     {"type": "onvif-metadata", "onvifTopic": "b"},
                                     {"type": "ONVIF-METADATA", "onvifTopic": "a"}])"),
            duplicate_source);
}

TEST_F(Parse_Sources, rejects_an_object_type_given_twice_whatever_else_differs) {
  EXPECT_EQ(rejection_of_sources(
                R"([{"type": "object-detection", "searchItem": {"type": "person"}},
                    {"type": "object-detection",
                     "searchItem": {"type": "person", "motionRequired": true}}])"),
            duplicate_source);
  EXPECT_EQ(rejection_of_sources(
                R"([{"type": "object-detection", "searchItem": {"type": "person"}},
                    {"type": "object-detection", "searchItem": {"type": "person"},
                     "activityDuration": {"minDurationMs": 1000, "dropoutMs": 1000}}])"),
            duplicate_source);
}

TEST_F(Parse_Sources, rejects_a_second_source_of_a_type_that_a_trigger_has_once) {
  for (const char* type : {"metadata-event", "motion-detection", "audio-detection"}) {
    SCOPED_TRACE(type);
    const std::string source = std::string("{\"type\": \"") + type + "\"}";
    EXPECT_EQ(rejection_of_sources("[" + source + ", " + source + "]"), duplicate_source);
  }
  EXPECT_EQ(rejection_of_sources(
                R"([{"type": "motion-detection"},
                    {"type": "motion-detection",
                     "activityDuration": {"minDurationMs": 1000, "dropoutMs": 1000}}])"),
            duplicate_source);
}

TEST_F(Parse_Sources, reads_a_source_to_its_end_before_it_looks_for_duplicates) {
  EXPECT_EQ(rejection_of_sources(
                R"([{"type": "object-detection", "searchItem": {"type": "person"}},
                    {"type": "object-detection", "searchItem": {"type": "person"},
                     "activityDuration": 5}])"),
            "\"activityDuration\" must be a JSON object.");
}

TEST_F(Parse_Sources, keeps_object_types_apart_byte_for_byte) {
  EXPECT_THAT(parse_sources(R"([
      {"type": "object-detection", "searchItem": {"type": "person"}},
      {"type": "object-detection", "searchItem": {"type": "Person"}},
      {"type": "object-detection", "searchItem": {"type": "person\u0000"}}])"),
              SizeIs(3));
}

}  // namespace
}  // namespace kuv::test
