// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <boost/date_time/gregorian/gregorian_types.hpp>
#include <limits>
#include <stdexcept>

#include "support/json.h"
#include "vemora/embedded_server/persistent/source_type_names.h"
#include "vemora/platform/database_enums.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/media/cached_capabilities.h"
#include "vemora/platform/media/stream_pipeline.h"
#include "vemora/platform/tags/tag_entry.h"
#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/platform/utils/json.h"
#include "vemora/platform/utils/time.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Term = ODB_Utils::Tag_Search_Term;
using Terms = std::set<Term>;

// Tag filters

TEST(Tag_Filter_Matching, refuses_nothing_without_terms) {
  EXPECT_TRUE(Tag_Filter::matches_any({}, {}));
  EXPECT_TRUE(Tag_Filter::matches_any({{"site", {"north"}}}, {}));
}

TEST(Tag_Filter_Matching, asks_for_the_presence_of_a_tag_where_a_term_has_no_value) {
  const Terms terms{{"indoor", std::nullopt}};

  EXPECT_TRUE(Tag_Filter::matches_any({{"indoor", {}}}, terms));
  EXPECT_TRUE(Tag_Filter::matches_any({{"indoor", {"yes"}}}, terms));
  EXPECT_TRUE(Tag_Filter::matches_any({{"indoor", {""}}}, terms));
  EXPECT_FALSE(Tag_Filter::matches_any({{"outdoor", {}}}, terms));
  EXPECT_FALSE(Tag_Filter::matches_any({}, terms));
}

TEST(Tag_Filter_Matching, asks_for_equal_values_byte_for_byte) {
  const auto matches = [](const std::optional<std::string>& has, const std::string& wanted) {
    return Tag_Filter::matches_any({{"site", {has}}}, {{"site", wanted}});
  };

  EXPECT_TRUE(matches("north", "north"));
  EXPECT_TRUE(matches("", ""));
  EXPECT_TRUE(matches("a\0b"s, "a\0b"s));
  EXPECT_FALSE(matches("a\0b"s, "a\0c"s));
  EXPECT_FALSE(matches("north", "North"));
  EXPECT_FALSE(matches("north", "nort"));
  EXPECT_FALSE(matches("north", "north "));
  EXPECT_FALSE(matches("n\u00f6rd", "no\u0308rd"));
  EXPECT_FALSE(matches(std::nullopt, ""));
  EXPECT_FALSE(matches(std::nullopt, "north"));
}

TEST(Tag_Filter_Matching, knows_tag_names_byte_for_byte) {
  EXPECT_FALSE(Tag_Filter::matches_any({{"Site", {}}}, {{"site", std::nullopt}}));
  EXPECT_FALSE(Tag_Filter::matches_any({{"site\0"s, {}}}, {{"site", std::nullopt}}));
  EXPECT_TRUE(Tag_Filter::matches_any({{"", {}}}, {{"", std::nullopt}}));
}

TEST(Tag_Filter_Matching, is_content_with_one_of_several_terms) {
  const Tag_Map tags{{"site", {"north"}}, {"indoor", {}}};

  EXPECT_TRUE(Tag_Filter::matches_any(tags, {{"site", "south"}, {"site", "north"}}));
  EXPECT_TRUE(Tag_Filter::matches_any(tags, {{"site", "south"}, {"indoor", std::nullopt}}));
  EXPECT_FALSE(Tag_Filter::matches_any(tags, {{"site", "south"}, {"door", std::nullopt}}));
}

TEST(Tag_Terms, are_ordered_by_name_then_by_value_with_none_first) {
  EXPECT_THAT(
      (Terms{{"b", std::nullopt}, {"a", "x"}, {"a", std::nullopt}, {"a", ""}, {"a", "x"}}),
      ElementsAre(Term{"a", std::nullopt}, Term{"a", ""}, Term{"a", "x"}, Term{"b", std::nullopt}));
}

TEST(Tag_Entries, are_ordered_by_name_then_by_value_with_none_first) {
  EXPECT_THAT((std::set<Tag_Entry>{{"b", {}}, {"a", {"x"}}, {"a", {}}, {"a", {""}}, {"a", {"x"}}}),
              ElementsAre(Tag_Entry{"a", {}}, Tag_Entry{"a", {""}}, Tag_Entry{"a", {"x"}},
                          Tag_Entry{"b", {}}));
}

// Tag filters in documents

Terms parse(const std::string& text) {
  return Vemora_Tags_JSON_Converter::parse_search_tags(json(text));
}

std::string rejection_of(const std::string& text) {
  try {
    parse(text);
  } catch (const Backend_Error<std::runtime_error>& error) {
    EXPECT_EQ(error.error_code, 245760);
    return error.what();
  }
  return "accepted";
}

TEST(Parse_Search_Tags, makes_one_term_of_each_wanted_value) {
  EXPECT_THAT(parse(R"({"site": "north", "indoor": null, "role": ["gate", "dock"]})"),
              ElementsAre(Term{"indoor", std::nullopt}, Term{"role", "dock"}, Term{"role", "gate"},
                          Term{"site", "north"}));
  EXPECT_THAT(parse(R"({"role": ["gate", null]})"),
              ElementsAre(Term{"role", std::nullopt}, Term{"role", "gate"}));
  EXPECT_THAT(parse(R"({"role": [null]})"), ElementsAre(Term{"role", std::nullopt}));
  EXPECT_THAT(parse(R"({"role": ["gate", "gate"]})"), ElementsAre(Term{"role", "gate"}));
  EXPECT_THAT(parse("{}"), IsEmpty());
}

TEST(Parse_Search_Tags, takes_any_text_as_name_and_value) {
  EXPECT_THAT(parse(R"({"": "", "a\u0000b": "c\u0000d"})"),
              ElementsAre(Term{"", ""}, Term{"a\0b"s, "c\0d"s}));
  EXPECT_THAT(parse("{\"\u00f6rt\": \"T\u00fcr\"}"), ElementsAre(Term{"\u00f6rt", "T\u00fcr"}));
}

TEST(Parse_Search_Tags, rejects_a_filter_that_is_no_object) {
  for (const char* text : {"null", "[]", "\"site\"", "5", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of(text), "A tag filter must be a JSON object.");
  }
}

TEST(Parse_Search_Tags, names_the_tag_of_which_the_value_is_wrong) {
  for (const char* text : {"5", "1.5", "true", "{}", R"({"value": "north"})"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of(std::string(R"({"indoor": null, "site": )") + text + "}"),
              "Tag \"site\" must be a string, null or an array of them.");
    EXPECT_EQ(rejection_of(std::string(R"({"indoor": null, "site": ["north", )") + text + "]}"),
              "Tag \"site\" must be an array of strings and nulls.");
  }
  EXPECT_EQ(rejection_of(R"({"site": [[]]})"),
            "Tag \"site\" must be an array of strings and nulls.");
}

TEST(Parse_Search_Tags, names_the_tag_of_which_the_array_is_empty) {
  EXPECT_EQ(rejection_of(R"({"indoor": null, "site": []})"), "Tag \"site\" has an empty array.");
  EXPECT_EQ(rejection_of(R"({"{}": []})"), "Tag \"{}\" has an empty array.");
}

// Names of source types

TEST(Source_Type_Names, stand_for_the_types_that_are_stored) {
  using Database_Enums::convert;
  EXPECT_EQ(convert<Trigger_Source_Type>("onvif-metadata"), Trigger_Source_Type::onvif_metadata);
  EXPECT_EQ(convert<Trigger_Source_Type>("metadata-event"), Trigger_Source_Type::metadata_event);
  EXPECT_EQ(convert<Trigger_Source_Type>("object-detection"),
            Trigger_Source_Type::object_detection);
  EXPECT_EQ(convert<Trigger_Source_Type>("external"), Trigger_Source_Type::external);
  EXPECT_EQ(convert<Trigger_Source_Type>("motion-detection"),
            Trigger_Source_Type::motion_detection);
  EXPECT_EQ(convert<Trigger_Source_Type>("audio-detection"), Trigger_Source_Type::audio_detection);
}

TEST(Source_Type_Names, are_known_in_lower_case_with_hyphens_only) {
  for (const std::string& name :
       {""s, "smell-detection"s, "Onvif-Metadata"s, "ONVIF-METADATA"s, "onvif_metadata"s,
        "onvif-metadata "s, "onvif"s, "external\0"s, "0"s, "unknown"s}) {
    try {
      Database_Enums::convert<Trigger_Source_Type>(name);
      ADD_FAILURE() << "known: " << name;
    } catch (const std::invalid_argument& error) {
      EXPECT_STREQ(error.what(), ("unknown trigger source type \"" + name + "\"").c_str());
    }
  }
}

TEST(Source_Type_Names, lead_back_to_their_types) {
  for (int value = 0; value <= 5; ++value) {
    const auto type = static_cast<Trigger_Source_Type>(value);
    EXPECT_EQ(Database_Enums::convert<Trigger_Source_Type>(std::string(name_of(type))), type);
  }
  for (const int value :
       {-1, 6, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(name_of(static_cast<Trigger_Source_Type>(value)), "unknown");
  }
}

// JSON utilities

using Numbers = std::vector<std::uint64_t>;

TEST(Transform_Json_Array, appends_the_numbers_in_their_order) {
  Numbers numbers;
  EXPECT_TRUE(kuv::utils::transform_json_array(
      json("[3, 1, 1, 18446744073709551615, 9223372036854775808, 0, 7.0]"), numbers));
  EXPECT_EQ(numbers, (Numbers{3, 1, 1, 18446744073709551615U, 9223372036854775808U, 0, 7}));
}

TEST(Transform_Json_Array, keeps_what_is_there_already) {
  Numbers numbers{5, 6};
  EXPECT_TRUE(kuv::utils::transform_json_array(json("[7]"), numbers));
  EXPECT_TRUE(kuv::utils::transform_json_array<Numbers>(json("[]"), numbers));
  EXPECT_EQ(numbers, (Numbers{5, 6, 7}));
}

TEST(Transform_Json_Array, refuses_what_is_no_array) {
  for (const char* text : {"null", "{}", R"({"0": 1})", "5", "\"[1]\"", "true"}) {
    SCOPED_TRACE(text);
    Numbers numbers{5};
    EXPECT_FALSE(kuv::utils::transform_json_array(json(text), numbers));
    EXPECT_EQ(numbers, Numbers{5});
  }
}

TEST(Transform_Json_Array, stops_at_an_element_that_is_no_unsigned_integer) {
  for (const char* element :
       {"null", "-1", "0.5", "18446744073709551616", "1e20", "\"1\"", "true", "[]", "{}", "[1]"}) {
    SCOPED_TRACE(element);
    Numbers numbers{5};
    EXPECT_FALSE(
        kuv::utils::transform_json_array(json(std::string("[1, 2, ") + element + ", 3]"), numbers));
    EXPECT_EQ(numbers, (Numbers{5, 1, 2}));
  }
}

TEST(Set_Json_Value_If_Null, assigns_the_fallback_to_null) {
  Json::Value document;
  kuv::utils::set_json_value_if_null(document["triggers"], Json::arrayValue);
  EXPECT_EQ(document, json(R"({"triggers": []})"));
}

TEST(Set_Json_Value_If_Null, leaves_any_other_value_as_it_is) {
  for (const char* text : {"false", "0", "\"\"", "[]", "{}", "0.0", "[null]"}) {
    SCOPED_TRACE(text);
    Json::Value value = json(text);
    kuv::utils::set_json_value_if_null(value, json("[1]"));
    EXPECT_EQ(value, json(text));
  }
}

TEST(Set_Json_Value_If_Null, may_assign_null) {
  Json::Value value;
  kuv::utils::set_json_value_if_null(value, Json::nullValue);
  EXPECT_TRUE(value.isNull());
}

// Values set when a library is loaded

TEST(Load_Time_Values, are_the_two_epochs) {
  using boost::gregorian::date;
  using boost::posix_time::ptime;
  EXPECT_EQ(kuv::utils::UNIX_EPOCH, ptime(date(1970, 1, 1)));
  EXPECT_EQ(kuv::utils::NTP_EPOCH, ptime(date(1900, 1, 1)));
}

TEST(Load_Time_Values, are_the_shared_settings_of_the_stream_pipeline) {
  EXPECT_EQ(Stream_Pipeline::DEFAULT_MIN_MOTION_DURATION.total_microseconds(), 5'000'000);
  EXPECT_EQ(CACHED_CAPABILITIES_KEY, "CachedCaps");
}

}  // namespace
}  // namespace kuv::test
