// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <stdexcept>

#include "support/log_capture.h"
#include "trigger_parser/parser_test.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char configs_are_no_object[] = "Trigger configuration must be a JSON object.";
constexpr char no_triggers[] = "Missing \"triggers\" array.";
constexpr char triggers_not_objects[] = "\"triggers\" must be an array of JSON objects.";
constexpr char bad_id[] = "\"id\" field is missing or invalid.";
constexpr char bad_name[] = "\"name\" field is missing or invalid.";
constexpr char bad_tags[] = "\"tags\" must be a JSON object.";
constexpr char bad_any_time[] = "\"anyTime\" field is invalid.";

using Term = ODB_Utils::Tag_Search_Term;

struct Parse_Trigger_Configs : Parser_Test {
  /// What the trigger is rejected with, by the parser itself or by the tag converter.
  Rejection error_of(const Json::Value& trigger) {
    try {
      parse_configs(configuration({trigger}));
    } catch (const Backend_Error<std::runtime_error>& error) {
      EXPECT_EQ(error.error_code, 245760);
      return Rejection(error.what());
    }
    return Rejection("accepted");
  }
};

std::vector<std::uint64_t> ids(const std::vector<Trigger_Config>& configs) {
  std::vector<std::uint64_t> all;
  for (const Trigger_Config& config : configs) {
    all.push_back(config.id);
  }
  return all;
}

Json::Value a_dropped_trigger(std::uint64_t id) {
  return with(a_trigger(id), "sources", R"([{"type": "external"}, {"type": "smell-detection"}])");
}

// The document

TEST_F(Parse_Trigger_Configs, takes_a_document_without_any_trigger) {
  EXPECT_THAT(parse_configs(json(R"({"triggers": []})")), IsEmpty());
}

TEST_F(Parse_Trigger_Configs, rejects_a_document_that_is_no_object) {
  for (const char* text : {"[]", R"([{"triggers": []}])", "null", "7", "true", "\"triggers\""}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(json(text)), configs_are_no_object);
  }
}

TEST_F(Parse_Trigger_Configs, rejects_a_document_without_a_triggers_array) {
  for (const char* text :
       {"{}", R"({"triggers": null})", R"({"triggers": {}})", R"({"triggers": "[]"})",
        R"({"triggers": 1})", R"({"Triggers": []})", R"({"triggers": false, "properties": {}})"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(json(text)), no_triggers);
  }
}

TEST_F(Parse_Trigger_Configs, rejects_an_element_that_is_no_object) {
  for (const char* text : {"null", "1", "\"gate\"", "[]", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(configuration({json(text)})), triggers_not_objects);
    EXPECT_EQ(rejection_of_configs(configuration({a_trigger(), json(text)})), triggers_not_objects);
  }
}

TEST_F(Parse_Trigger_Configs, ignores_the_properties_and_keys_that_it_does_not_know) {
  const Json::Value document = json(R"({
    "version": 3, "properties": "unread",
    "triggers": [{"id": 7, "name": "gate", "tags": {"tenant": 5}, "comment": [],
                  "sources": [{"type": "metadata-event", "onvifTopic": 5, "searchItem": 6,
                               "activityDuration": 7, "colour": "red"}]}]})");

  const Trigger_Config config = parse_only_config(document);

  EXPECT_EQ(config.id, 7U);
  EXPECT_EQ(config.sources.size(), 1U);
}

TEST_F(Parse_Trigger_Configs, does_not_take_a_key_that_goes_on_after_a_zero_for_its_beginning) {
  const std::string zero(1, '\0');
  Json::Value trigger = json(R"({
    "id": 5, "name": "gate", "tags": {}, "anyTime": true, "sources": [{
      "type": "object-detection", "searchItem": {"type": "person"},
      "activityDuration": {"mode": "object-presence", "minDurationMs": 5000, "dropoutMs": 2000}}]})");
  const std::vector<Trigger_Config> plain = parse_configs(configuration({trigger}));

  Json::Value& source = trigger["sources"][0];
  for (Json::Value* object : {&trigger, &trigger["tags"], &source, &source["activityDuration"]}) {
    for (const char* key : {"id", "name", "tags", "anyTime", "sources", "camera", "server",
                            "eventSubscription", "type", "mode", "minDurationMs"}) {
      (*object)[key + zero] = "of no meaning";
    }
  }
  const std::vector<Trigger_Config> configs = parse_configs(configuration({trigger}));

  ASSERT_EQ(ids(configs), ids(plain));
  EXPECT_EQ(configs[0].name, "gate");
  EXPECT_TRUE(configs[0].options.any_time);
  EXPECT_THAT(configs[0].tags.camera, IsEmpty());
  ASSERT_EQ(configs[0].sources.size(), 1);
  EXPECT_EQ(configs[0].sources.begin()->activity_duration->min_duration,
            plain[0].sources.begin()->activity_duration->min_duration);

  trigger.removeMember("id");
  EXPECT_EQ(error_of(trigger), bad_id);
}

TEST_F(Parse_Trigger_Configs, keeps_the_order_of_the_document) {
  EXPECT_THAT(ids(parse_configs(configuration({a_trigger(3), a_trigger(1), a_trigger(2)}))),
              ElementsAre(3, 1, 2));
}

TEST_F(Parse_Trigger_Configs, takes_every_field_of_a_trigger) {
  given_schedule(4);
  const Json::Value document = json(R"({"triggers": [{
    "id": 7, "name": "gate",
    "tags": {"server": {"site": "north"}, "camera": {"indoor": null},
             "eventSubscription": {"door": ["main", null]}},
    "sources": [{"type": "onvif-metadata", "onvifTopic": "tns1:VideoSource/MotionAlarm"}],
    "anyTime": true, "scheduleIds": [4]}]})");

  const Trigger_Config config = parse_only_config(document);

  EXPECT_EQ(config.id, 7U);
  EXPECT_EQ(config.name, "gate");
  EXPECT_THAT(config.tags.server, ElementsAre(Term{"site", "north"}));
  EXPECT_THAT(config.tags.camera, ElementsAre(Term{"indoor", std::nullopt}));
  EXPECT_THAT(config.tags.event_subscription,
              ElementsAre(Term{"door", std::nullopt}, Term{"door", "main"}));
  EXPECT_THAT(config.all_source_topics(), ElementsAre("tns1:VideoSource/MotionAlarm"));
  EXPECT_THAT(schedule_ids(config.schedules), ElementsAre(4));
  EXPECT_TRUE(config.options.any_time);
  EXPECT_FALSE(config.matches_server);
  EXPECT_FALSE(config.schedule_invalid);
}

TEST_F(Parse_Trigger_Configs, leaves_what_is_not_given_at_its_default) {
  const Trigger_Config config = parse_only_config(configuration({a_trigger()}));

  EXPECT_THAT(config.tags.server, IsEmpty());
  EXPECT_THAT(config.tags.camera, IsEmpty());
  EXPECT_THAT(config.tags.event_subscription, IsEmpty());
  EXPECT_THAT(config.schedules, IsEmpty());
  EXPECT_FALSE(config.options.any_time);
  EXPECT_FALSE(config.schedule_invalid);
}

TEST_F(Parse_Trigger_Configs, logs_nothing) {
  parse_configs(configuration({a_trigger(), a_dropped_trigger(2)}));
  rejection_of_configs(json("[]"));

  EXPECT_THAT(log.lines(), IsEmpty());
}

// "id"

TEST_F(Parse_Trigger_Configs, takes_ids_of_all_64_bits) {
  for (const char* text : {"0", "1", "2147483648", "4294967296", "9223372036854775807",
                           "9223372036854775808", "18446744073709551615"}) {
    SCOPED_TRACE(text);
    const Trigger_Config config = parse_only_config(configuration({with(a_trigger(), "id", text)}));
    EXPECT_EQ(std::to_string(config.id), text);
  }
}

TEST_F(Parse_Trigger_Configs, takes_a_whole_valued_double_as_an_id) {
  const auto id_of = [&](const char* text) {
    return parse_only_config(configuration({with(a_trigger(), "id", text)})).id;
  };

  EXPECT_EQ(id_of("7.0"), 7U);
  EXPECT_EQ(id_of("0.0"), 0U);
  EXPECT_EQ(id_of("-0.0"), 0U);
  EXPECT_EQ(id_of("-0"), 0U);
  EXPECT_EQ(id_of("1e3"), 1000U);
  EXPECT_EQ(id_of("9223372036854775808.0"), 9223372036854775808U);
  EXPECT_EQ(id_of("18446744073709549568.0"), 18446744073709549568U);
}

TEST_F(Parse_Trigger_Configs, rejects_a_trigger_without_an_id) {
  EXPECT_EQ(rejection_of_configs(configuration({without(a_trigger(), "id")})), bad_id);
  EXPECT_EQ(rejection_of_configs(configuration({with(a_trigger(), "id", "null")})), bad_id);
}

TEST_F(Parse_Trigger_Configs, rejects_an_id_that_is_no_unsigned_64_bit_integer) {
  for (const std::string& text : texts_that_are_no_id()) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(configuration({with(a_trigger(), "id", text)})), bad_id);
  }
}

TEST_F(Parse_Trigger_Configs, rejects_a_second_trigger_of_the_same_id) {
  EXPECT_EQ(rejection_of_configs(configuration({a_trigger(7), a_trigger(8), a_trigger(7)})),
            "All \"id\" values must be unique, 7 is duplicated.");
  EXPECT_EQ(rejection_of_configs(configuration({a_trigger(7), with(a_trigger(), "id", "7.0")})),
            "All \"id\" values must be unique, 7 is duplicated.");
  EXPECT_EQ(rejection_of_configs(configuration({a_trigger(0), a_trigger(0)})),
            "All \"id\" values must be unique, 0 is duplicated.");
  EXPECT_EQ(rejection_of_configs(configuration(
                {a_trigger(18446744073709551615U), a_trigger(18446744073709551615U)})),
            "All \"id\" values must be unique, 18446744073709551615 is duplicated.");
}

TEST_F(Parse_Trigger_Configs, does_not_count_the_id_of_a_dropped_trigger) {
  EXPECT_THAT(ids(parse_configs(configuration({a_dropped_trigger(7), a_trigger(7)}))),
              ElementsAre(7));
  EXPECT_THAT(ids(parse_configs(configuration({a_trigger(7), a_dropped_trigger(7)}))),
              ElementsAre(7));
  EXPECT_EQ(rejection_of_configs(configuration({a_dropped_trigger(7), a_trigger(7), a_trigger(7)})),
            "All \"id\" values must be unique, 7 is duplicated.");
}

// "name"

TEST_F(Parse_Trigger_Configs, takes_any_text_as_a_name) {
  const auto name_of = [&](const char* text) {
    return parse_only_config(configuration({with(a_trigger(), "name", text)})).name;
  };
  using namespace std::string_literals;

  EXPECT_EQ(name_of(R"("")"), "");
  EXPECT_EQ(name_of(R"("gate \u0000 west")"), "gate \0 west"s);
  EXPECT_EQ(name_of("\"T\u00fcr \u95e8\""), "T\u00fcr \u95e8");
  EXPECT_EQ(name_of(R"("{} %s \" \\")"), "{} %s \" \\");
}

TEST_F(Parse_Trigger_Configs, rejects_a_name_that_is_missing_or_no_string) {
  EXPECT_EQ(rejection_of_configs(configuration({without(a_trigger(), "name")})), bad_name);
  for (const char* text : {"null", "7", "1.5", "true", "[\"gate\"]", "{}"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(configuration({with(a_trigger(), "name", text)})), bad_name);
  }
}

// "tags"

TEST_F(Parse_Trigger_Configs, rejects_tags_that_are_missing_or_no_object) {
  EXPECT_EQ(rejection_of_configs(configuration({without(a_trigger(), "tags")})), bad_tags);
  for (const char* text : {"null", "7", "\"site\"", "true", "[]", "[{}]"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(configuration({with(a_trigger(), "tags", text)})), bad_tags);
  }
}

TEST_F(Parse_Trigger_Configs, takes_a_null_filter_for_an_absent_one) {
  const Trigger_Config config = parse_only_config(configuration({with(
      a_trigger(), "tags", R"({"server": null, "camera": null, "eventSubscription": null})")}));

  EXPECT_THAT(config.tags.server, IsEmpty());
  EXPECT_THAT(config.tags.camera, IsEmpty());
  EXPECT_THAT(config.tags.event_subscription, IsEmpty());
}

TEST_F(Parse_Trigger_Configs, passes_on_what_is_wrong_with_a_tag_filter) {
  for (const char* filter : {"server", "camera", "eventSubscription"}) {
    SCOPED_TRACE(filter);
    const auto tags = [&](const std::string& text) {
      return with(a_trigger(), "tags", std::string("{\"") + filter + "\": " + text + "}");
    };
    EXPECT_EQ(error_of(tags("[]")), "A tag filter must be a JSON object.");
    EXPECT_EQ(error_of(tags(R"({"site": 5})")),
              "Tag \"site\" must be a string, null or an array of them.");
    EXPECT_EQ(error_of(tags(R"({"site": []})")), "Tag \"site\" has an empty array.");
    EXPECT_EQ(error_of(tags(R"({"site": ["north", 5]})")),
              "Tag \"site\" must be an array of strings and nulls.");
  }
}

TEST_F(Parse_Trigger_Configs,
       reads_the_server_filter_then_the_camera_filter_then_the_event_filter) {
  const char* all_wrong =
      R"({"eventSubscription": {"c": 1}, "camera": {"b": 1}, "server": {"a": 1}})";
  Json::Value trigger = with(a_trigger(), "tags", all_wrong);

  EXPECT_EQ(error_of(trigger), "Tag \"a\" must be a string, null or an array of them.");
  trigger["tags"]["server"] = json("{}");
  EXPECT_EQ(error_of(trigger), "Tag \"b\" must be a string, null or an array of them.");
  trigger["tags"]["camera"] = json("{}");
  EXPECT_EQ(error_of(trigger), "Tag \"c\" must be a string, null or an array of them.");
  trigger["tags"]["eventSubscription"] = json("{}");
  EXPECT_EQ(error_of(trigger), "accepted");
}

// "anyTime"

TEST_F(Parse_Trigger_Configs, reads_whether_a_trigger_is_for_any_time) {
  const auto any_time = [&](const char* text) {
    return parse_only_config(configuration({with(a_trigger(), "anyTime", text)})).options.any_time;
  };

  EXPECT_TRUE(any_time("true"));
  EXPECT_FALSE(any_time("false"));
  EXPECT_FALSE(any_time("null"));
}

TEST_F(Parse_Trigger_Configs, rejects_an_any_time_that_is_neither_bool_nor_null) {
  for (const char* text : {"\"yes\"", "\"true\"", "0", "1", "1.0", "[]", "{}", "[true]"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of_configs(configuration({with(a_trigger(), "anyTime", text)})),
              bad_any_time);
  }
}

// Dropped triggers

TEST_F(Parse_Trigger_Configs, drops_a_trigger_of_which_no_source_is_left) {
  EXPECT_THAT(ids(parse_configs(configuration({a_trigger(1), a_dropped_trigger(2), a_trigger(3)}))),
              ElementsAre(1, 3));
}

TEST_F(Parse_Trigger_Configs, validates_a_trigger_that_it_is_going_to_drop) {
  const Json::Value dropped = a_dropped_trigger(2);

  EXPECT_EQ(rejection_of_configs(configuration({without(dropped, "id")})), bad_id);
  EXPECT_EQ(rejection_of_configs(configuration({without(dropped, "name")})), bad_name);
  EXPECT_EQ(rejection_of_configs(configuration({without(dropped, "tags")})), bad_tags);
  EXPECT_EQ(rejection_of_configs(configuration({with(dropped, "anyTime", "1")})), bad_any_time);
}

TEST_F(Parse_Trigger_Configs, does_not_look_at_the_schedules_of_a_dropped_trigger) {
  const Json::Value document = configuration({with(a_dropped_trigger(2), "scheduleIds", "[1]"),
                                              with(a_dropped_trigger(3), "scheduleIds", "5")});

  EXPECT_THAT(parse_configs(document), IsEmpty());
  EXPECT_THAT(fetched_schedules(), IsEmpty());
}

// Which fault is told when there are several

TEST_F(Parse_Trigger_Configs, tells_the_first_fault_of_a_trigger_in_the_order_of_its_checks) {
  given_schedule(1);
  Json::Value trigger = json(R"({"id": -1, "name": 5, "tags": 5, "sources": 5, "anyTime": 5,
                                 "scheduleIds": 5})");
  const auto next_fault = [&] { return error_of(trigger); };

  EXPECT_EQ(next_fault(), bad_id);
  trigger["id"] = 1;
  EXPECT_EQ(next_fault(), bad_name);
  trigger["name"] = "gate";
  EXPECT_EQ(next_fault(), bad_tags);
  trigger["tags"] = json(R"({"server": 5})");
  EXPECT_EQ(next_fault(), "A tag filter must be a JSON object.");
  trigger["tags"] = json("{}");
  EXPECT_EQ(next_fault(), "\"sources\" array is missing or invalid.");
  trigger["sources"] = json("[]");
  EXPECT_EQ(next_fault(), "\"sources\" array is empty.");
  trigger["sources"] = json(R"([{"type": "metadata-event"}, 5])");
  EXPECT_EQ(next_fault(), "\"sources\" must be an array of JSON objects.");
  trigger["sources"] = json(R"([{"type": "metadata-event"}])");
  EXPECT_EQ(next_fault(), bad_any_time);
  trigger["anyTime"] = false;
  EXPECT_EQ(next_fault(), "\"scheduleIds\" array is missing or invalid.");
  trigger["scheduleIds"] = json("[1]");
  EXPECT_EQ(next_fault(), "accepted");
}

TEST_F(Parse_Trigger_Configs, tells_the_fault_of_the_first_faulty_trigger) {
  EXPECT_EQ(rejection_of_configs(configuration(
                {a_trigger(1), without(a_trigger(2), "name"), without(a_trigger(3), "id")})),
            bad_name);
  EXPECT_EQ(
      rejection_of_configs(configuration({a_trigger(1), without(a_trigger(2), "name"), json("5")})),
      bad_name);
  EXPECT_EQ(rejection_of_configs(configuration({json("5"), without(a_trigger(2), "name")})),
            triggers_not_objects);
}

TEST_F(Parse_Trigger_Configs, reads_a_trigger_to_its_end_before_it_looks_for_its_id) {
  EXPECT_EQ(
      rejection_of_configs(configuration({a_trigger(7), with(a_trigger(7), "scheduleIds", "5")})),
      "\"scheduleIds\" array is missing or invalid.");
  EXPECT_EQ(rejection_of_configs(configuration({a_trigger(7), a_trigger(7), json("5")})),
            "All \"id\" values must be unique, 7 is duplicated.");
}

// The server

TEST_F(Parse_Trigger_Configs, says_which_triggers_are_for_this_server) {
  given_server_tags({{"site", {"north"}}, {"indoor", {}}});
  const auto matches = [&](const char* filter) {
    Json::Value trigger = a_trigger();
    trigger["tags"]["server"] = json(filter);
    return parse_only_config(configuration({trigger})).matches_server;
  };

  EXPECT_TRUE(matches("{}"));
  EXPECT_TRUE(matches(R"({"site": "north"})"));
  EXPECT_TRUE(matches(R"({"site": null})"));
  EXPECT_TRUE(matches(R"({"indoor": null})"));
  EXPECT_TRUE(matches(R"({"site": ["south", "north"]})"));
  EXPECT_TRUE(matches(R"({"site": "south", "indoor": null})"));
  EXPECT_FALSE(matches(R"({"site": "south"})"));
  EXPECT_FALSE(matches(R"({"site": "North"})"));
  EXPECT_FALSE(matches(R"({"outdoor": null})"));
}

TEST_F(Parse_Trigger_Configs, matches_the_server_by_its_own_filter_alone) {
  Json::Value trigger = a_trigger();
  trigger["tags"] = json(R"({"camera": {"site": "south"}, "eventSubscription": {"door": "main"}})");

  EXPECT_TRUE(parse_only_config(configuration({trigger})).matches_server);
}

TEST_F(Parse_Trigger_Configs, keeps_the_triggers_of_other_servers) {
  Json::Value elsewhere = a_trigger(1);
  elsewhere["tags"]["server"] = json(R"({"site": "south"})");

  const auto configs = parse_configs(configuration({elsewhere, a_trigger(2)}));

  ASSERT_THAT(ids(configs), ElementsAre(1, 2));
  EXPECT_FALSE(configs[0].matches_server);
  EXPECT_TRUE(configs[1].matches_server);
}

}  // namespace
}  // namespace kuv::test
