// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <map>

#include "trigger_parser/parser_test.h"
#include "trigger_parser/told_faults.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/platform/utils/json.h"
#include "vemora/platform/utils/json_elements.h"
#include "vemora/platform/utils/json_members.h"

// A server may hand over arrays of which some elements were never assigned. They count as null.

namespace kuv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr Json::ArrayIndex far_away = 4'000'000'000;

Json::Value array_of(const std::map<Json::ArrayIndex, Json::Value>& assigned) {
  Json::Value array(Json::arrayValue);
  for (const auto& [index, element] : assigned) {
    array[index] = element;
  }
  return array;
}

Json::Value object_with(const char* name, const Json::Value& member) {
  Json::Value object(Json::objectValue);
  object[name] = member;
  return object;
}

std::vector<std::string> visited(const Json::Value& array) {
  std::vector<std::string> elements;
  for (const auto& [index, element] : kuv::utils::Json_Elements(array)) {
    elements.push_back(std::to_string(index) + ": " +
                       (element.isNull() ? "null" : element.asString()));
  }
  return elements;
}

TEST(Json_Elements, are_visited_in_order) {
  EXPECT_THAT(visited(json(R"(["a", null, "b"])")), ElementsAre("0: a", "1: null", "2: b"));
  EXPECT_THAT(visited(Json::arrayValue), IsEmpty());
}

TEST(Json_Elements, that_were_never_assigned_are_null_and_visited_once_where_several_are_in_a_row) {
  EXPECT_THAT(visited(array_of({{5, "a"}, {7, "b"}, {far_away, "c"}})),
              ElementsAre("0: null", "5: a", "6: null", "7: b", "8: null", "4000000000: c"));
  EXPECT_THAT(visited(array_of({{0, "a"}, {4294967295U, "b"}})),
              ElementsAre("0: a", "1: null", "4294967295: b"));
  EXPECT_THAT(visited(array_of({{4294967295U, "a"}})), ElementsAre("0: null", "4294967295: a"));
  EXPECT_THAT(visited(array_of({{0, "a"}, {2, "b"}})), ElementsAre("0: a", "1: null", "2: b"));
  EXPECT_THAT(visited(array_of({{0, "a"}, {1, "b"}, {3, "c"}, {4, "d"}})),
              ElementsAre("0: a", "1: b", "2: null", "3: c", "4: d"));
}

std::vector<std::string> visited_members(const Json::Value& object) {
  std::vector<std::string> members;
  for (const auto& [name, value] : kuv::utils::Json_Members(object)) {
    members.push_back(std::string(name) + ": " + (value.isNull() ? "null" : value.asString()));
  }
  return members;
}

TEST(Json_Members, are_visited_in_the_order_of_their_names) {
  EXPECT_THAT(visited_members(json(R"({"b": "2", "a": null, "ab": "3", "": "1"})")),
              ElementsAre(": 1", "a: null", "ab: 3", "b: 2"));
  EXPECT_THAT(visited_members(json(R"({"one": "1"})")), ElementsAre("one: 1"));
  EXPECT_THAT(visited_members(Json::objectValue), IsEmpty());
  EXPECT_THAT(visited_members(Json::nullValue), IsEmpty());
}

TEST(Json_Members, have_all_of_their_names) {
  EXPECT_THAT(visited_members(json(R"({"a\u0000b": "1"})")),
              ElementsAre(std::string("a\0b: 1", 6)));
}

TEST(Transform_Json_Array, stops_at_an_element_that_was_never_assigned) {
  std::vector<std::uint64_t> numbers{7};
  EXPECT_FALSE(kuv::utils::transform_json_array(array_of({{5, 1}}), numbers));
  EXPECT_THAT(numbers, ElementsAre(7));
  EXPECT_FALSE(
      kuv::utils::transform_json_array(array_of({{0, 1}, {1, 2}, {far_away, 3}}), numbers));
  EXPECT_THAT(numbers, ElementsAre(7, 1, 2));
}

TEST(Parse_Search_Tags, asks_for_the_tag_alone_where_a_value_was_never_assigned) {
  const auto terms = Vemora_Tags_JSON_Converter::parse_search_tags(
      object_with("role", array_of({{0, "dock"}, {far_away, "gate"}})));
  std::vector<std::string> found;
  for (const auto& term : terms) {
    found.push_back(term.name + "=" + term.value.value_or("anything"));
  }
  EXPECT_THAT(found, ::testing::UnorderedElementsAre("role=anything", "role=dock", "role=gate"));
}

struct Unassigned_Elements : Parser_Test {
  Unassigned_Elements() { given_schedule(1); }

  /// The document is rejected wherever the first element that was never assigned is.
  void expect_rejection(const Json::Value& element, const std::string& text,
                        const std::function<Rejection(const Json::Value& array)>& rejection_with) {
    EXPECT_EQ(rejection_with(array_of({{1, element}})), text);
    EXPECT_EQ(rejection_with(array_of({{far_away, element}})), text);
    EXPECT_EQ(rejection_with(array_of({{0, element}, {2, element}})), text);
    EXPECT_EQ(rejection_with(array_of({{0, element}, {far_away, element}})), text);
  }
};

TEST_F(Unassigned_Elements, are_no_triggers) {
  expect_rejection(a_trigger(), "\"triggers\" must be an array of JSON objects.",
                   [this](const Json::Value& array) {
                     return rejection_of_configs(object_with("triggers", array));
                   });
}

TEST_F(Unassigned_Elements, are_no_sources) {
  expect_rejection(json(R"({"type": "metadata-event"})"),
                   "\"sources\" must be an array of JSON objects.",
                   [this](const Json::Value& array) {
                     Json::Value trigger = a_trigger();
                     trigger["sources"] = array;
                     return rejection_of_configs(configuration({trigger}));
                   });
}

TEST_F(Unassigned_Elements, are_no_associations) {
  expect_rejection(json(R"({"scheduleIds": [], "triggerIds": [5]})"),
                   "\"triggerMapping\" must be an array of JSON objects.",
                   [this](const Json::Value& array) {
                     return rejection_of_mapping(object_with("triggerMapping", array));
                   });
}

TEST_F(Unassigned_Elements, are_no_ids) {
  expect_rejection(1, "\"scheduleIds\" must be an array of unsigned integers.",
                   [this](const Json::Value& array) {
                     Json::Value trigger = a_trigger();
                     trigger["scheduleIds"] = array;
                     return rejection_of_configs(configuration({trigger}));
                   });
  for (const char* key : {"scheduleIds", "triggerIds"}) {
    expect_rejection(
        1, std::string("\"") + key + "\" must be an array of unsigned integers.",
        [this, key](const Json::Value& array) {
          Json::Value association = json(R"({"scheduleIds": [1], "triggerIds": [5]})");
          association[key] = array;
          return rejection_of_mapping(object_with("triggerMapping", array_of({{0, association}})));
        });
  }
}

TEST_F(Unassigned_Elements, are_one_fault_where_several_are_in_a_row) {
  Told_Faults told;
  parser.parse_trigger_configs(
      object_with("triggers", array_of({{0, a_trigger()}, {2, 7}, {far_away, a_trigger(8)}})), {},
      told);
  std::vector<std::size_t> indexes;
  for (const Parser_Fault& fault : told.all) {
    EXPECT_EQ(fault.message, "\"triggers\" must be an array of JSON objects.");
    indexes.push_back(fault.index.value());
  }
  EXPECT_THAT(indexes, ElementsAre(1, 2, 3));
}

TEST_F(Unassigned_Elements, take_no_room_wherever_their_array_is_said_to_stand) {
  Json::Value triggers = array_of({{0, a_trigger()}, {far_away, a_trigger(8)}});
  triggers.setOffsetStart(100);
  triggers.setOffsetLimit(0);

  EXPECT_EQ(rejection_of_configs(object_with("triggers", triggers)),
            "\"triggers\" must be an array of JSON objects.");
}

TEST_F(Unassigned_Elements, are_told_with_the_place_of_their_array) {
  Json::Value document = json(R"({"triggers": [ ]})");
  document["triggers"][Json::ArrayIndex(3)] = a_trigger();
  Told_Faults told;
  parser.parse_trigger_configs(document, {}, told);
  ASSERT_EQ(told.all.size(), 1U);
  EXPECT_EQ(told.all[0].offset, std::string(R"({"triggers": )").size());

  const std::string before_ids = R"({"triggerMapping": [{"scheduleIds": [], "triggerIds": )";
  document = json(before_ids + "[ ]}]}");
  document["triggerMapping"][0]["triggerIds"][Json::ArrayIndex(3)] = 7;
  parser.parse_trigger_mapping(document, told);
  ASSERT_EQ(told.all.size(), 2U);
  EXPECT_EQ(told.all[1].offset, before_ids.size());
}

}  // namespace
}  // namespace kuv::test
