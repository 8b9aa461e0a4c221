// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/inventory/inventory_reader.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "embedded_server/host/counted_allocations.h"
#include "vemora/embedded_server/inventory/object_types.h"

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// "line:column: what is wrong", one each.
std::vector<std::string> faults_of(const std::string& text,
                                   const Inventory_References& stored = {}) {
  const Json_Document document(text);
  std::vector<std::string> faults;
  for (const Document_Fault& fault : read_inventory(document, stored).faults) {
    faults.push_back(
        fmt::format("{}:{}: {}", fault.location.line, fault.location.column, fault.message));
  }
  return faults;
}

TEST(Read_Inventories, reads_every_record_and_its_defaults) {
  const Json_Document document(R"({
    "servers": [{"id": 1, "name": "one", "tags": {"site": "north", "spare": null}}],
    "cameras": [{"id": 10}, {"id": 18446744073709551615, "name": "last", "objectDetection": true,
                 "motionDetection": true, "capabilities": {"Metadata": {}}}],
    "schedules": [{"id": 1}, {"id": 2, "name": "never", "usable": false}],
    "eventCategories": [{"id": 1, "name": "access"}],
    "subscriptions": [{"id": 3, "name": "door", "categoryId": 1, "tags": {"door": "main"},
                       "cameraIds": [10, 10]}],
    "objectTypes": {"vehicle": ["car", "truck"]}})");

  const Read_Inventory read = read_inventory(document, {});

  EXPECT_THAT(read.faults, IsEmpty());
  const Inventory& inventory = read.inventory;
  ASSERT_EQ(inventory.servers.size(), 1);
  EXPECT_EQ(inventory.servers[0].tags.at("site").value, "north");
  EXPECT_EQ(inventory.servers[0].tags.at("spare").value, std::nullopt);
  ASSERT_EQ(inventory.cameras.size(), 2);
  EXPECT_FALSE(inventory.cameras[0].object_detection);
  EXPECT_EQ(inventory.cameras[0].capabilities, "");
  EXPECT_EQ(inventory.cameras[1].id, 18446744073709551615U);
  EXPECT_TRUE(inventory.cameras[1].motion_detection);
  EXPECT_EQ(inventory.cameras[1].capabilities, R"({"Metadata":{}})");
  ASSERT_EQ(inventory.schedules.size(), 2);
  EXPECT_TRUE(inventory.schedules[0].usable);
  EXPECT_FALSE(inventory.schedules[1].usable);
  ASSERT_EQ(inventory.categories.size(), 1);
  EXPECT_EQ(inventory.categories[0].name, "access");
  ASSERT_EQ(inventory.subscriptions.size(), 1);
  EXPECT_EQ(inventory.subscriptions[0].category_id, 1);
  EXPECT_THAT(inventory.subscriptions[0].camera_ids, ElementsAre(10));
  EXPECT_THAT(inventory.object_types.at("vehicle"), ElementsAre("car", "truck"));
}

TEST(Read_Inventories, refuses_ids_that_are_not_written_as_integers) {
  for (const char* id :
       {"7.0", "7e0", "-1", "\"7\"", "null", "true", "18446744073709551616", "[]"}) {
    EXPECT_THAT(faults_of(fmt::format("{{\"cameras\": [{{\"id\": {}}}]}}", id)),
                ElementsAre("1:21: \"id\" must be an unsigned 64-bit integer."))
        << id;
  }
  EXPECT_THAT(faults_of(R"({"cameras": [{"name": "x"}]})"),
              ElementsAre("1:14: \"id\" must be an unsigned 64-bit integer."));
  Inventory_References stored;
  stored.camera_ids = {7};
  stored.category_ids = {7};
  EXPECT_THAT(
      faults_of(R"({"subscriptions": [{"id": 1, "categoryId": 7, "cameraIds": [7]}]})", stored),
      IsEmpty());
  EXPECT_THAT(
      faults_of(R"({"subscriptions": [{"id": 1, "categoryId": 7.0, "cameraIds": [7.0]}]})", stored),
      ElementsAre("1:44: \"categoryId\" must be an unsigned 64-bit integer.",
                  "1:63: \"cameraIds\" must be an array of unsigned 64-bit integers."));
}

TEST(Read_Inventories, tells_an_unknown_key_where_the_key_stands) {
  EXPECT_THAT(
      faults_of("{\"doors\":\n  [],\n \"servers\": [{\"id\": 1,\n  \"colour\" :\n \"red\"}]}"),
      ElementsAre("1:2: Unknown key \"doors\".", "4:3: Unknown key \"colour\"."));
}

TEST(Read_Inventories, tells_every_fault_in_the_order_of_the_document) {
  EXPECT_THAT(faults_of(R"({
 "objectTypes": {"vehicle": []},
 "subscriptions": [{"id": 3, "categoryId": 9, "cameraIds": [8]}, {"id": 3}, 4],
 "cameras": [{"id": 10, "objectDetection": 1, "motionDetection": null, "name": 5,
   "capabilities": "{}", "tags": {"area": 1}}],
 "schedules": {}})"),
              ElementsAre("2:29: Object type \"vehicle\" must be a non-empty array of strings.",
                          "3:44: There is no event category 9.", "3:61: There is no camera 8.",
                          "3:73: The id 3 is given twice, first in line 3, column 27.",
                          "3:77: \"subscriptions\" must be an array of JSON objects.",
                          "4:44: \"objectDetection\" must be true or false.",
                          "4:66: \"motionDetection\" must be true or false.",
                          "4:80: \"name\" must be a string.",
                          "5:20: \"capabilities\" must be a JSON object.",
                          "5:43: Tag \"area\" must be a string or null.",
                          "6:15: \"schedules\" must be an array of JSON objects."));
}

TEST(Read_Inventories, refuses_what_is_no_object_where_one_must_be) {
  for (const char* value : {"[]", "null", "7", "\"text\"", "true"}) {
    SCOPED_TRACE(value);
    EXPECT_THAT(faults_of(fmt::format(R"({{"objectTypes": {}}})", value)),
                ElementsAre("1:17: \"objectTypes\" must be a JSON object."));
    EXPECT_THAT(faults_of(fmt::format(R"({{"cameras": [{{"id": 1, "tags": {}}}]}})", value)),
                ElementsAre("1:32: \"tags\" must be a JSON object."));
    EXPECT_THAT(
        faults_of(fmt::format(R"({{"cameras": [{{"id": 1, "capabilities": {}}}]}})", value)),
        ElementsAre("1:40: \"capabilities\" must be a JSON object."));
  }
  EXPECT_THAT(faults_of("\n []"), ElementsAre("2:2: An inventory must be a JSON object."));
}

TEST(Read_Inventories, refuses_the_id_of_a_topic_subscription) {
  Inventory_References stored;
  stored.topic_subscription_ids = {3};
  EXPECT_THAT(faults_of(R"({"subscriptions": [{"id": 3}]})", stored),
              ElementsAre("1:27: The id 3 is that of a topic subscription."));
}

TEST(Read_Inventories, names_every_ring_of_object_types_and_the_road_around_it) {
  EXPECT_THAT(
      faults_of(R"({"objectTypes": {
    "a": ["x", "b"], "b": ["c"], "c": ["a"],
    "own": ["own"],
    "fine": ["a", "person"],
    "d": ["e"], "e": ["d"]}})"),
      ElementsAre("2:10: Object type \"a\" stands for itself: \"a\" > \"b\" > \"c\" > \"a\".",
                  "3:12: Object type \"own\" stands for itself: \"own\" > \"own\".",
                  "5:10: Object type \"d\" stands for itself: \"d\" > \"e\" > \"d\"."));
}

TEST(Read_Inventories, finds_a_ring_that_is_closed_by_what_is_stored) {
  Inventory_References stored;
  stored.object_types = {{"a", {"vehicle"}}};
  EXPECT_THAT(
      faults_of(R"({"objectTypes": {"vehicle": ["a"]}})", stored),
      ElementsAre("1:29: Object type \"a\" stands for itself: \"a\" > \"vehicle\" > \"a\"."));
}

TEST(Read_Inventories, is_done_in_a_moment_with_faults_and_names_without_number) {
  std::string types;
  for (int number = 0; number < 10000; ++number) {
    types += fmt::format("\"{}\": [\"{}\"], ", number, number + 1);
  }
  EXPECT_THAT(faults_of("{\"objectTypes\": {" + types + "\"10000\": [\"person\"]}}"), IsEmpty());
  EXPECT_EQ(faults_of("{\"objectTypes\": {" + types + "\"10000\": [\"0\"]}}").size(), 1);
  EXPECT_EQ(faults_of("{" + types + "\"10000\": 1}").size(), 10001);
}

/// "first", "first + 1", ..., each in quotes.
std::string numbered_types(std::size_t count, std::size_t first = 0) {
  std::string names;
  for (std::size_t number = first; number < first + count; ++number) {
    names += fmt::format("{}\"type {}\"", names.empty() ? "" : ", ", number);
  }
  return names;
}

TEST(Read_Inventories, lets_an_object_type_stand_for_a_thousand_and_no_more) {
  const auto document = [](std::size_t more) {
    return fmt::format(R"({{"objectTypes": {{"large": [{}],
 "larger": ["large", "type 0", "alias", {}],
 "alias": ["large"],
 "largest": ["alias", "larger"],
 "small": ["type 7", "car"]}}}})",
                       numbered_types(900), numbered_types(more, 850));
  };
  EXPECT_THAT(faults_of(document(150)), IsEmpty());
  EXPECT_THAT(faults_of(document(151)),
              ElementsAre("2:12: Object type \"larger\" stands for more than 1000 types.",
                          "4:13: Object type \"largest\" stands for more than 1000 types."));
}

TEST(Read_Inventories, finds_an_object_type_that_is_overgrown_by_what_is_stored) {
  Inventory_References stored;
  stored.object_types = {{"all", {"vehicle", "person"}}};
  EXPECT_THAT(faults_of("{\"objectTypes\": {\"vehicle\": [" + numbered_types(999) + "]}}", stored),
              IsEmpty());
  EXPECT_THAT(faults_of("{\"objectTypes\": {\"vehicle\": [" + numbered_types(1000) + "]}}", stored),
              ElementsAre("1:17: Object type \"all\" stands for more than 1000 types."));
}

TEST(Read_Inventories, has_an_end_of_general_object_types) {
  std::string types;
  for (int number = 0; number < 19999; ++number) {
    types += fmt::format("\"{}\": [\"car\"], ", number);
  }
  EXPECT_THAT(faults_of("{\"objectTypes\": {" + types + "\"x\": [\"car\"]}}"), IsEmpty());
  EXPECT_THAT(faults_of("{\"objectTypes\": {" + types + "\"x\": [\"car\"], \"y\": [\"car\"]}}"),
              ElementsAre("1:17: There are more than 20000 general object types."));
}

TEST(Read_Inventories, does_not_repeat_a_name_without_end_in_each_fault) {
  const std::string name(100000, 'x');
  const auto faults =
      faults_of("{\"objectTypes\": {\"" + name + "\": [\"car\"" + std::string(20000, ' ') + [] {
        std::string numbers;
        for (int element = 0; element < 20000; ++element) {
          numbers += ",1";
        }
        return numbers;
      }() + "]}}");
  ASSERT_EQ(faults.size(), 20000U);
  EXPECT_EQ(
      faults.front().substr(faults.front().find(": ") + 2),
      "Object type \"" + std::string(200, 'x') + "...\" must be a non-empty array of strings.");
}

TEST(Cycles_Of_Object_Types, are_found_behind_others_and_each_name_is_in_one) {
  EXPECT_THAT(find_cycles({}), IsEmpty());
  EXPECT_THAT(find_cycles({{"a", {"b", "c"}}, {"b", {"d"}}, {"c", {"d"}}, {"d", {"e"}}}),
              IsEmpty());
  EXPECT_THAT(find_cycles({{"a", {"b"}}, {"b", {"c"}}, {"c", {"b"}}}),
              ElementsAre(ElementsAre("b", "c", "b")));
  EXPECT_THAT(find_cycles({{"a", {"a", "b"}}, {"b", {"a"}}}), ElementsAre(ElementsAre("a", "a")));
  EXPECT_THAT(find_cycles({{"a", {"b", "c"}}, {"b", {"a"}}, {"c", {"d"}}, {"d", {"c"}}}),
              ElementsAre(ElementsAre("a", "b", "a"), ElementsAre("c", "d", "c")));
}

/// A road whose every stop leads on, and back to its beginning.
std::size_t allocations_for_returning_road(int stops) {
  const auto name = [](int stop) { return fmt::format("an object type called {:06}", stop); };
  Object_Types types;
  for (int stop = 0; stop < stops; ++stop) {
    types[name(stop)] = {name(0), name(stop + 1)};
  }
  const std::size_t before = test::allocations();
  EXPECT_EQ(find_cycles(types).size(), 1);
  return test::allocations() - before;
}

TEST(Cycles_Of_Object_Types, cost_no_more_for_each_of_many_types_than_of_few) {
  const std::size_t few = allocations_for_returning_road(1000);
  const std::size_t many = allocations_for_returning_road(8000);
  EXPECT_LE(many, few * 9);
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
