// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <stdexcept>

#include "support/log_capture.h"
#include "trigger_parser/parser_test.h"

namespace kuv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

constexpr char mapping_is_no_object[] = "Trigger mapping must be a JSON object.";
constexpr char no_mapping[] = "\"triggerMapping\" array is missing or invalid.";
constexpr char mapping_not_objects[] = "\"triggerMapping\" must be an array of JSON objects.";
constexpr char no_schedule_ids[] = "\"scheduleIds\" array is missing or invalid.";
constexpr char bad_schedule_ids[] = "\"scheduleIds\" must be an array of unsigned integers.";
constexpr char no_trigger_ids[] = "\"triggerIds\" array is missing or invalid.";
constexpr char empty_trigger_ids[] = "\"triggerIds\" array is empty.";
constexpr char bad_trigger_ids[] = "\"triggerIds\" must be an array of unsigned integers.";

/// Schedules 1, 2 and 3 can be used, 8 cannot, 9 does not exist.
struct Parse_Trigger_Mapping : Parser_Test {
  Parse_Trigger_Mapping() {
    given_schedule(1);
    given_schedule(2);
    given_schedule(3);
    given_unusable_schedule(8);
  }

  /// The ids of the schedules of each trigger; nothing where they cannot be used.
  std::map<std::uint64_t, std::optional<std::vector<std::uint64_t>>> mapped(
      const std::string& associations) {
    std::map<std::uint64_t, std::optional<std::vector<std::uint64_t>>> ids;
    for (const auto& [trigger, schedules] : parse_mapping(document(associations))) {
      ids[trigger] = schedules ? std::optional(schedule_ids(*schedules)) : std::nullopt;
    }
    return ids;
  }

  Rejection rejection_of_associations(const std::string& associations) {
    return rejection_of_mapping(document(associations));
  }

  static Json::Value document(const std::string& associations) {
    return with(Json::objectValue, "triggerMapping", associations);
  }
};

using Ids = std::vector<std::uint64_t>;

// The document

TEST_F(Parse_Trigger_Mapping, takes_a_document_without_any_association) {
  EXPECT_THAT(mapped("[]"), IsEmpty());
}

TEST_F(Parse_Trigger_Mapping, rejects_a_document_that_is_no_object) {
  for (const char* text : {"[]", R"([{"triggerMapping": []}])", "null", "5", "\"\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_mapping(json(text)), mapping_is_no_object);
  }
}

TEST_F(Parse_Trigger_Mapping, rejects_a_document_without_a_mapping_array) {
  EXPECT_EQ(rejection_of_mapping(json("{}")), no_mapping);
  for (const char* text :
       {"null", "{}", "5", "\"[]\"", "false", R"({"scheduleIds": [1], "triggerIds": [5]})"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_associations(text), no_mapping);
  }
}

TEST_F(Parse_Trigger_Mapping, rejects_an_element_that_is_no_object) {
  for (const char* text : {"null", "5", "[]", "[[1], [5]]", "\"\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_associations(std::string("[") + text + "]"), mapping_not_objects);
    EXPECT_EQ(rejection_of_associations(
                  std::string(R"([{"scheduleIds": [1], "triggerIds": [5]}, )") + text + "]"),
              mapping_not_objects);
  }
}

TEST_F(Parse_Trigger_Mapping, ignores_keys_that_it_does_not_know) {
  EXPECT_THAT(parse_mapping(json(R"({"version": 1, "triggerMapping":
                  [{"scheduleIds": [], "triggerIds": [5], "comment": 5}]})")),
              ElementsAre(Pair(5, ::testing::Optional(IsEmpty()))));
}

TEST_F(Parse_Trigger_Mapping, logs_nothing) {
  mapped(R"([{"scheduleIds": [9], "triggerIds": [5]}])");
  rejection_of_mapping(json("[]"));

  EXPECT_THAT(log.lines(), IsEmpty());
}

// "scheduleIds"

TEST_F(Parse_Trigger_Mapping, rejects_schedule_ids_that_are_missing_or_no_array) {
  EXPECT_EQ(rejection_of_associations(R"([{"triggerIds": [5]}])"), no_schedule_ids);
  for (const char* text : {"null", "1", "{}", "\"1\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_associations(std::string(R"([{"triggerIds": [5], "scheduleIds": )") +
                                        text + "}]"),
              no_schedule_ids);
  }
}

TEST_F(Parse_Trigger_Mapping, rejects_schedule_ids_of_which_one_is_no_unsigned_integer) {
  std::vector<std::string> texts = texts_that_are_no_id();
  texts.push_back("null");
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(
        rejection_of_associations(R"([{"triggerIds": [5], "scheduleIds": [1, )" + text + "]}]"),
        bad_schedule_ids);
  }
}

TEST_F(Parse_Trigger_Mapping, fetches_no_schedule_before_all_their_ids_are_read) {
  rejection_of_associations(R"([{"scheduleIds": [1, 2, -1], "triggerIds": [5]}])");

  EXPECT_THAT(fetched_schedules(), IsEmpty());
}

TEST_F(Parse_Trigger_Mapping, looks_at_the_schedules_before_the_triggers) {
  EXPECT_EQ(rejection_of_associations(R"([{"triggerIds": 5}])"), no_schedule_ids);
  EXPECT_EQ(rejection_of_associations(R"([{"triggerIds": [], "scheduleIds": [-1]}])"),
            bad_schedule_ids);
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [1, 2]}])"), no_trigger_ids);
  EXPECT_THAT(fetched_schedules(), ElementsAre(1, 2));
}

// "triggerIds"

TEST_F(Parse_Trigger_Mapping, rejects_trigger_ids_that_are_missing_or_no_array) {
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [1]}])"), no_trigger_ids);
  for (const char* text : {"null", "5", "{}", "\"5\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_associations(std::string(R"([{"scheduleIds": [1], "triggerIds": )") +
                                        text + "}]"),
              no_trigger_ids);
  }
}

TEST_F(Parse_Trigger_Mapping, rejects_an_association_without_triggers) {
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [1], "triggerIds": []}])"),
            empty_trigger_ids);
}

TEST_F(Parse_Trigger_Mapping, rejects_trigger_ids_of_which_one_is_no_unsigned_integer) {
  std::vector<std::string> texts = texts_that_are_no_id();
  texts.push_back("null");
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(
        rejection_of_associations(R"([{"scheduleIds": [1], "triggerIds": [5, )" + text + "]}]"),
        bad_trigger_ids);
  }
}

TEST_F(Parse_Trigger_Mapping, checks_the_triggers_of_an_association_whose_schedules_are_unusable) {
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [9], "triggerIds": []}])"),
            empty_trigger_ids);
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [9], "triggerIds": [-1]}])"),
            bad_trigger_ids);
}

TEST_F(Parse_Trigger_Mapping, tells_the_fault_of_the_first_faulty_association) {
  EXPECT_EQ(rejection_of_associations(R"([{"scheduleIds": [1], "triggerIds": []}, 5])"),
            empty_trigger_ids);
  EXPECT_EQ(rejection_of_associations(R"([5, {"scheduleIds": [1], "triggerIds": []}])"),
            mapping_not_objects);
}

TEST_F(Parse_Trigger_Mapping, takes_ids_of_all_64_bits) {
  given_schedule(18446744073709551615U);
  given_schedule(0);

  EXPECT_THAT(mapped(R"([{"scheduleIds": [18446744073709551615, 0],
                          "triggerIds": [18446744073709551615, 9223372036854775808, 0]}])"),
              ElementsAre(Pair(0, Ids{0, 18446744073709551615U}),
                          Pair(9223372036854775808U, Ids{0, 18446744073709551615U}),
                          Pair(18446744073709551615U, Ids{0, 18446744073709551615U})));
  EXPECT_THAT(fetched_schedules(), ElementsAre(18446744073709551615U, 0));
}

TEST_F(Parse_Trigger_Mapping, takes_a_whole_valued_double_as_an_id) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [1.0], "triggerIds": [5e0]}])"),
              ElementsAre(Pair(5, Ids{1})));
}

// What is mapped

TEST_F(Parse_Trigger_Mapping, gives_each_trigger_the_schedules_of_its_association) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [2, 1], "triggerIds": [6, 5]}])"),
              ElementsAre(Pair(5, Ids{1, 2}), Pair(6, Ids{1, 2})));
}

TEST_F(Parse_Trigger_Mapping, holds_the_records_that_the_database_gave) {
  const auto record = given_schedule(1);

  const Trigger_Mapping mapping =
      parse_mapping(document(R"([{"scheduleIds": [1], "triggerIds": [5]}])"));

  EXPECT_EQ(mapping.at(5)->begin()->schedule, record);
}

TEST_F(Parse_Trigger_Mapping, gives_a_trigger_no_schedules_where_none_are_named) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [], "triggerIds": [5]}])"), ElementsAre(Pair(5, Ids{})));
}

TEST_F(Parse_Trigger_Mapping, unites_the_schedules_of_all_associations_of_a_trigger) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [1], "triggerIds": [5]},
                         {"scheduleIds": [2], "triggerIds": [5, 6]},
                         {"scheduleIds": [], "triggerIds": [5]},
                         {"scheduleIds": [1, 3], "triggerIds": [6]}])"),
              ElementsAre(Pair(5, Ids{1, 2}), Pair(6, Ids{1, 2, 3})));
}

TEST_F(Parse_Trigger_Mapping, leaves_the_schedules_of_other_triggers_alone) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [1], "triggerIds": [5, 6]},
                         {"scheduleIds": [2], "triggerIds": [5]}])"),
              ElementsAre(Pair(5, Ids{1, 2}), Pair(6, Ids{1})));
}

TEST_F(Parse_Trigger_Mapping, takes_a_repeated_id_once) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [1, 1], "triggerIds": [5, 5]}])"),
              ElementsAre(Pair(5, Ids{1})));
  EXPECT_THAT(fetched_schedules(), ElementsAre(1, 1));
}

TEST_F(Parse_Trigger_Mapping, keeps_the_record_that_came_first_for_a_schedule) {
  const auto first = given_schedule(1);
  const auto second = std::make_shared<schedule>(schedule{1, "loaded again", true});
  database.schedules.records[2] = second;

  const Trigger_Mapping mapping = parse_mapping(document(
      R"([{"scheduleIds": [1, 2], "triggerIds": [5]}, {"scheduleIds": [2], "triggerIds": [5]}])"));

  ASSERT_THAT(*mapping.at(5), ::testing::SizeIs(1));
  EXPECT_EQ(mapping.at(5)->begin()->schedule, first);
}

// Schedules that cannot be used

TEST_F(Parse_Trigger_Mapping, marks_the_triggers_of_a_schedule_that_is_gone_or_unusable) {
  for (const char* schedules : {"[9]", "[8]", "[1, 9]", "[8, 1]"}) {
    SCOPED_TRACE(schedules);
    EXPECT_THAT(
        mapped(std::string(R"([{"triggerIds": [5, 6], "scheduleIds": )") + schedules + "}]"),
        ElementsAre(Pair(5, std::nullopt), Pair(6, std::nullopt)));
  }
}

TEST_F(Parse_Trigger_Mapping, stops_fetching_at_the_first_schedule_that_cannot_be_used) {
  mapped(R"([{"scheduleIds": [2, 9, 1], "triggerIds": [5]},
             {"scheduleIds": [3, 8, 1], "triggerIds": [5]},
             {"scheduleIds": [1], "triggerIds": [5]}])");

  EXPECT_THAT(fetched_schedules(), ElementsAre(2, 9, 3, 8, 1));
}

TEST_F(Parse_Trigger_Mapping, keeps_a_trigger_marked_whatever_follows) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [1], "triggerIds": [5]},
                         {"scheduleIds": [2], "triggerIds": [5]},
                         {"scheduleIds": [9], "triggerIds": [5]},
                         {"scheduleIds": [1], "triggerIds": [5]},
                         {"scheduleIds": [], "triggerIds": [5]},
                         {"scheduleIds": [8], "triggerIds": [5]},
                         {"scheduleIds": [3], "triggerIds": [5, 6]}])"),
              ElementsAre(Pair(5, std::nullopt), Pair(6, Ids{3})));
}

TEST_F(Parse_Trigger_Mapping, marks_a_trigger_from_its_first_association_on) {
  EXPECT_THAT(mapped(R"([{"scheduleIds": [9], "triggerIds": [5, 5]},
                         {"scheduleIds": [1], "triggerIds": [5]}])"),
              ElementsAre(Pair(5, std::nullopt)));
}

TEST_F(Parse_Trigger_Mapping, lets_failures_of_the_database_through_unchanged) {
  database.schedules.fault = std::make_exception_ptr(std::out_of_range("row 1"));
  try {
    mapped(R"([{"scheduleIds": [1], "triggerIds": [5]}])");
    FAIL() << "nothing was thrown";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "row 1");
  }

  database.schedules.fault = std::make_exception_ptr(Database_Is_Gone());
  EXPECT_THROW(mapped(R"([{"scheduleIds": [1], "triggerIds": [5]}])"), Database_Is_Gone);
}

// The schedules of a trigger

struct Schedules_Of_A_Trigger : Parse_Trigger_Mapping {
  static Json::Value trigger_5(const std::string& own_schedule_ids) {
    return configuration({with(a_trigger(5), "scheduleIds", own_schedule_ids)});
  }

  Trigger_Config parse_with(const std::string& own_schedule_ids, const std::string& associations) {
    const Trigger_Mapping mapping = parse_mapping(document(associations));
    database.schedules.asked.clear();
    return parse_only_config(trigger_5(own_schedule_ids), mapping);
  }
};

void expect_active(const Trigger_Config& config, const Ids& schedules) {
  EXPECT_EQ(schedule_ids(config.schedules), schedules);
  EXPECT_FALSE(config.schedule_invalid);
}

void expect_invalid(const Trigger_Config& config) {
  EXPECT_THAT(config.schedules, IsEmpty());
  EXPECT_TRUE(config.schedule_invalid);
}

TEST_F(Schedules_Of_A_Trigger, are_none_where_it_names_none_whatever_the_mapping_says) {
  const Json::Value absent = configuration({a_trigger(5)});

  expect_active(parse_only_config(absent), {});
  expect_active(parse_only_config(absent, {{5, std::nullopt}}), {});
  expect_active(parse_with("null", R"([{"scheduleIds": [9], "triggerIds": [5]}])"), {});
  expect_active(parse_with("null", R"([{"scheduleIds": [1], "triggerIds": [5]}])"), {});
  EXPECT_THAT(fetched_schedules(), IsEmpty());
}

TEST_F(Schedules_Of_A_Trigger, are_those_it_names_where_the_mapping_has_none) {
  expect_active(parse_with("[2, 1]", "[]"), {1, 2});
  expect_active(parse_with("[2]", R"([{"scheduleIds": [1], "triggerIds": [6]}])"), {2});
  expect_active(parse_with("[2]", R"([{"scheduleIds": [], "triggerIds": [5]}])"), {2});
  expect_active(parse_with("[]", "[]"), {});
}

TEST_F(Schedules_Of_A_Trigger, are_not_extended_by_the_mapping) {
  expect_active(parse_with("[1, 2]", R"([{"scheduleIds": [2, 3], "triggerIds": [5]}])"), {1, 2});
  expect_active(parse_with("[]", R"([{"scheduleIds": [1], "triggerIds": [5]}])"), {});
}

TEST_F(Schedules_Of_A_Trigger, are_held_as_the_mapping_holds_them_where_it_has_them) {
  const auto mapped_2 = std::make_shared<schedule>(schedule{2, "of the mapping", true});
  const auto mapped_3 = std::make_shared<schedule>(schedule{3, "of the mapping", true});
  const auto own_1 = given_schedule(1);
  const auto own_2 = given_schedule(2);

  const Trigger_Config config =
      parse_only_config(trigger_5("[1, 2]"), {{5, {{{mapped_2}, {mapped_3}}}}, {6, std::nullopt}});

  ASSERT_THAT(schedule_ids(config.schedules), ElementsAre(1, 2));
  EXPECT_EQ(config.schedules.begin()->schedule, own_1);
  EXPECT_EQ(std::next(config.schedules.begin())->schedule, mapped_2);
  EXPECT_THAT(fetched_schedules(), ElementsAre(1, 2));
}

TEST_F(Schedules_Of_A_Trigger, are_invalid_where_the_mapping_marks_the_trigger) {
  expect_invalid(parse_with("[1]", R"([{"scheduleIds": [9], "triggerIds": [5]}])"));
  expect_invalid(parse_with("[]", R"([{"scheduleIds": [8], "triggerIds": [5]}])"));
}

TEST_F(Schedules_Of_A_Trigger, are_invalid_where_one_of_them_cannot_be_used) {
  expect_invalid(parse_with("[9]", "[]"));
  expect_invalid(parse_with("[1, 8, 2]", "[]"));
  EXPECT_THAT(fetched_schedules(), ElementsAre(1, 8));
  expect_invalid(parse_with("[8]", R"([{"scheduleIds": [1], "triggerIds": [5]}])"));
  expect_invalid(parse_with("[8]", R"([{"scheduleIds": [9], "triggerIds": [5]}])"));
}

TEST_F(Schedules_Of_A_Trigger, are_fetched_anew_even_where_the_mapping_marks_the_trigger) {
  parse_with("[2, 1]", R"([{"scheduleIds": [9], "triggerIds": [5]}])");

  EXPECT_THAT(fetched_schedules(), ElementsAre(2, 1));
}

TEST_F(Schedules_Of_A_Trigger, must_be_an_array_of_unsigned_integers) {
  for (const char* text : {"1", "{}", "\"1\"", "true", "false", R"({"scheduleIds": [1]})"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(trigger_5(text)), no_schedule_ids);
  }
  for (const std::string& text : texts_that_are_no_id()) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(trigger_5("[1, " + text + "]")), bad_schedule_ids);
  }
  EXPECT_EQ(rejection_of_configs(trigger_5("[null]")), bad_schedule_ids);
}

TEST_F(Schedules_Of_A_Trigger, are_checked_before_the_mapping_is_looked_at) {
  EXPECT_EQ(rejection_of_configs(trigger_5("5"), {{5, std::nullopt}}), no_schedule_ids);
  EXPECT_EQ(rejection_of_configs(trigger_5("[-1]"), {{5, std::nullopt}}), bad_schedule_ids);
}

TEST_F(Schedules_Of_A_Trigger, leave_the_mapping_as_it_is) {
  const Trigger_Mapping mapping =
      parse_mapping(document(R"([{"scheduleIds": [2, 3], "triggerIds": [5]}])"));

  parse_only_config(trigger_5("[1]"), mapping);

  EXPECT_EQ(schedule_ids(*mapping.at(5)), (Ids{2, 3}));
}

TEST_F(Schedules_Of_A_Trigger, let_failures_of_the_database_through_unchanged) {
  database.schedules.fault = std::make_exception_ptr(Database_Is_Gone());

  EXPECT_THROW(parse_configs(trigger_5("[1]")), Database_Is_Gone);

  database.schedules.fault = std::make_exception_ptr(std::out_of_range("row 1"));
  try {
    parse_configs(trigger_5("[1]"));
    FAIL() << "nothing was thrown";
  } catch (const std::out_of_range& error) {
    EXPECT_STREQ(error.what(), "row 1");
  }
}

}  // namespace
}  // namespace kuv::test
