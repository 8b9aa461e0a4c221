// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/told_faults.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>

#include "trigger_parser/parser_test.h"
#include "trigger_parser/source_sentences.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::string text_of_rejection(const std::function<void()>& parse) {
  try {
    parse();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "accepted";
}

/// What is said of each sample.
struct Fault_Messages : Parser_Test, testing::WithParamInterface<Fault_Sample> {};

TEST_P(Fault_Messages, are_those_that_the_document_is_rejected_with) {
  const Json::Value document = json(GetParam().text);
  Told_Faults told;
  read(parser, GetParam().read_by, document, told);

  ASSERT_THAT(told.all, SizeIs(1));
  EXPECT_EQ(told.all[0].message, GetParam().message);
  if (document.isObject()) {  // the properties of another are looked up without a question
    EXPECT_EQ(text_of_rejection([&] { read(parser, GetParam().read_by, document); }),
              GetParam().message);
  }
}

INSTANTIATE_TEST_SUITE_P(Each, Fault_Messages, testing::ValuesIn(fault_samples()),
                         [](const auto& info) { return info.param.name; });

std::vector<std::string> messages_of_samples() {
  std::vector<std::string> messages;
  for (const Fault_Sample& sample : fault_samples()) {
    messages.push_back(sample.message);
  }
  return messages;
}

TEST(Fault_Samples, leave_no_message_of_the_parser_out) {
  for (const std::string& message : registered_messages()) {
    if (message == "Failed to retrieve server tags due to invalid server ID") {
      continue;  // it is about no place
    }
    EXPECT_THAT(messages_of_samples(), Contains(testing::Truly([&](const std::string& text) {
                  return is_filled_from(text, message);
                })))
        << message;
  }
}

TEST(Fault_Samples, leave_no_message_of_the_tags_library_out) {
  const std::vector<std::string> patterns = sentences_of_sources(VEMORA_TAGS_SOURCES);
  EXPECT_THAT(patterns, SizeIs(4));
  for (const std::string& pattern : patterns) {
    EXPECT_THAT(messages_of_samples(), Contains(testing::Truly([&](const std::string& text) {
                  return can_become(pattern, text);
                })))
        << pattern;
  }
}

/// "offset index id: what is wrong", one each.
std::vector<std::string> texts_of(const Told_Faults& told) {
  std::vector<std::string> texts;
  for (const Parser_Fault& fault : told.all) {
    const auto text = [](const auto& number) { return number ? std::to_string(*number) : "-"; };
    texts.push_back(fmt::format("{} {} {}: {}", text(fault.offset), text(fault.index),
                                text(fault.id), fault.message));
  }
  return texts;
}

struct Faults_Of_A_Document : Parser_Test {
  std::vector<std::string> faults_of_configs(const std::string& text) {
    Told_Faults told;
    parser.parse_trigger_configs(json(text), {}, told);
    return texts_of(told);
  }

  std::vector<std::string> faults_of_mapping(const std::string& text) {
    Told_Faults told;
    parser.parse_trigger_mapping(json(text), told);
    return texts_of(told);
  }

  /// What is told of a trigger with these members behind its id.
  std::vector<std::string> messages_of_trigger(const std::string& members) {
    Told_Faults told;
    parser.parse_trigger_configs(json(R"({"triggers": [{"id": 7, )" + members + "}]}"), {}, told);
    std::vector<std::string> messages;
    for (const Parser_Fault& fault : told.all) {
      messages.push_back(fault.message);
    }
    return messages;
  }
};

TEST_F(Faults_Of_A_Document, are_all_told_ten_of_them_in_three_triggers) {
  EXPECT_THAT(faults_of_configs(R"({"triggers": [
{"id": 1, "name": 1, "tags": {"server": {"site": 1}}, "sources": [{"type": 1}], "anyTime": 1, "scheduleIds": 1},
{"id": "2", "name": "", "sources": [{"type": "metadata-event"}]},
{"id": 1, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}, {"type": "METADATA-EVENT"}], "scheduleIds": [1, "2"]}
]})"),
              ElementsAre(R"(33 0 1: "name" field is missing or invalid.)",
                          R"(64 0 1: Tag "site" must be a string, null or an array of them.)",
                          R"(90 0 1: "type" field is missing or invalid for source.)",
                          R"(106 0 1: "anyTime" field is invalid.)",
                          R"(124 0 1: "scheduleIds" array is missing or invalid.)",
                          R"(135 1 -: "id" field is missing or invalid.)",
                          R"(128 1 -: "tags" must be a JSON object.)",
                          R"(268 2 1: Duplicate entry in "sources" detected.)",
                          R"(316 2 1: "scheduleIds" must be an array of unsigned integers.)",
                          R"(201 2 1: All "id" values must be unique, 1 is duplicated.)"));
}

TEST_F(Faults_Of_A_Document, are_told_of_each_association) {
  EXPECT_THAT(faults_of_mapping(R"({"triggerMapping": [7, {}, {"scheduleIds": ["1", 2, null]},
{"scheduleIds": [], "triggerIds": [1]}, {"scheduleIds": 1, "triggerIds": []}]})"),
              ElementsAre(R"(20 0 -: "triggerMapping" must be an array of JSON objects.)",
                          R"(23 1 -: "scheduleIds" array is missing or invalid.)",
                          R"(23 1 -: "triggerIds" array is missing or invalid.)",
                          R"(44 2 -: "scheduleIds" must be an array of unsigned integers.)",
                          R"(52 2 -: "scheduleIds" must be an array of unsigned integers.)",
                          R"(27 2 -: "triggerIds" array is missing or invalid.)",
                          R"(116 4 -: "scheduleIds" array is missing or invalid.)",
                          R"(133 4 -: "triggerIds" array is empty.)"));
}

TEST_F(Faults_Of_A_Document, are_told_of_each_setting) {
  Told_Faults told;
  parser.parse_config_properties(json(R"({"properties": {"notificationMaxLatencySecs": "1",
      "notificationAckTimeoutSecs": 1.5, "notificationNackDelayMs": 1}})"),
                                 told);
  EXPECT_THAT(
      texts_of(told),
      ElementsAre(
          R"(46 - -: "properties.notificationMaxLatencySecs" must be an unsigned integer.)",
          R"(87 - -: "properties.notificationAckTimeoutSecs" must be an unsigned integer.)"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Faults_Of_A_Document, are_told_of_each_tag_once) {
  EXPECT_THAT(messages_of_trigger(R"("name": "", "sources": [{"type": "metadata-event"}],
      "tags": {"server": {"a": 1, "b": [1, 2], "c": null, "d": []}, "camera": [], "eventSubscription": {"e": 1}})"),
              ElementsAre("Tag \"a\" must be a string, null or an array of them.",
                          "Tag \"b\" must be an array of strings and nulls.",
                          "Tag \"d\" has an empty array.", "A tag filter must be a JSON object.",
                          "Tag \"e\" must be a string, null or an array of them."));
}

TEST_F(Faults_Of_A_Document, end_with_the_one_behind_which_nobody_wants_more) {
  const Json::Value document = json(R"({"triggers": [{"id": 1, "name": 1}, 7]})");
  Told_Faults told(2);
  EXPECT_EQ(text_of_rejection([&] { parser.parse_trigger_configs(document, {}, told); }),
            "\"tags\" must be a JSON object.");
  EXPECT_THAT(texts_of(told), ElementsAre(R"(32 0 1: "name" field is missing or invalid.)",
                                          R"(14 0 1: "tags" must be a JSON object.)"));
}

TEST_F(Faults_Of_A_Document, are_none_where_it_is_valid) {
  const std::string text = R"({"triggers": [{"id": 7, "name": "", "tags": {"server": {"a": null}},
      "sources": [{"type": "metadata-event"}], "scheduleIds": [1]}]})";
  Told_Faults told;
  EXPECT_THAT(parser.parse_trigger_configs(json(text), {}, told), SizeIs(1));
  EXPECT_THAT(told.all, IsEmpty());
}

TEST_F(Faults_Of_A_Document, come_with_nothing_to_work_with) {
  Told_Faults told;
  EXPECT_THAT(parser.parse_trigger_configs(
                  configuration({with(a_trigger(1), "name", "1"), a_trigger(2)}), {}, told),
              IsEmpty());
}

// What is wrong only because something else is, is no fault of its own.

TEST_F(Faults_Of_A_Document, are_no_missing_dropout_where_the_mode_is_none) {
  const auto messages = [&](const std::string& type, const std::string& mode) {
    return messages_of_trigger(
        R"("name": "", "tags": {}, "sources": [{"searchItem": {"type": "car"}, "type": ")" + type +
        R"(", "activityDuration": {"minDurationMs": 1000, "mode": )" + mode + "}}]");
  };
  EXPECT_THAT(messages("object-detection", "1"),
              ElementsAre("\"activityDuration.mode\" must be a string."));
  EXPECT_THAT(messages("object-detection", "\"track\""), SizeIs(1));
  EXPECT_THAT(messages("motion-detection", "1"),
              ElementsAre("\"activityDuration.mode\" must be a string.",
                          "\"activityDuration.dropoutMs\" is missing or invalid."));
}

TEST_F(Faults_Of_A_Document, are_no_duplicate_of_a_source_that_nobody_can_compare) {
  EXPECT_THAT(messages_of_trigger(R"("name": "", "tags": {}, "sources": [
      {"type": "onvif-metadata"}, {"type": "onvif-metadata", "onvifTopic": 1},
      {"type": "onvif-metadata", "onvifTopic": "a"},
      {"type": "object-detection"}, {"type": "object-detection", "searchItem": {}},
      {"type": "object-detection", "searchItem": {"type": ""}}])"),
              ElementsAre("An onvif-metadata source has a missing or invalid \"onvifTopic\" field.",
                          "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.",
                          "\"searchItem\" object is missing or invalid.\"",
                          "An object-detection source has a missing or invalid object type.",
                          "An object-detection source has an empty object type specified."));
}

TEST_F(Faults_Of_A_Document, are_duplicates_of_sources_that_are_faulty_in_other_ways) {
  EXPECT_THAT(messages_of_trigger(R"("name": "", "tags": {}, "sources": [
      {"type": "object-detection", "searchItem": {"type": "car", "motionRequired": 1}},
      {"type": "object-detection", "searchItem": {"type": "car"}},
      {"type": "motion-detection", "activityDuration": 1}, {"type": "motion-detection"}])"),
              ElementsAre("An object-detection source has an invalid \"motionRequired\" field.",
                          "Duplicate entry in \"sources\" detected.",
                          "\"activityDuration\" must be a JSON object.",
                          "Duplicate entry in \"sources\" detected."));
}

TEST_F(Faults_Of_A_Document, are_none_of_schedules_and_ids_of_a_trigger_that_is_dropped) {
  EXPECT_THAT(faults_of_configs(R"({"triggers": [
{"id": 7, "name": 1, "tags": {}, "sources": [{"type": "external"}, {"type": "of tomorrow"}], "scheduleIds": 1},
{"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]}]})"),
              ElementsAre(R"(33 0 7: "name" field is missing or invalid.)"));
}

TEST_F(Faults_Of_A_Document, are_ids_of_faulty_triggers_too) {
  EXPECT_THAT(faults_of_configs(R"({"triggers": [
{"id": 7, "name": 1, "tags": {}, "sources": [{"type": "metadata-event"}]},
{"id": 7, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]},
{"id": -1, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]},
{"id": -1, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]},
{"id": 0, "name": "", "tags": {}, "sources": [{"type": "metadata-event"}]}]})"),
              ElementsAre(R"(33 0 7: "name" field is missing or invalid.)",
                          R"(97 1 7: All "id" values must be unique, 7 is duplicated.)",
                          R"(173 2 -: "id" field is missing or invalid.)",
                          R"(250 3 -: "id" field is missing or invalid.)"));
}

TEST_F(Faults_Of_A_Document, are_told_where_the_server_is_unknown_too) {
  given_server_is_unknown();
  EXPECT_THAT(faults_of_configs(R"({"triggers": [7]})"),
              ElementsAre("- - -: Failed to retrieve server tags due to invalid server ID",
                          R"(14 0 -: "triggers" must be an array of JSON objects.)"));

  Told_Faults told(1);
  EXPECT_THROW(parser.parse_trigger_configs(json(R"({"triggers": [7]})"), {}, told),
               Internal_Error<std::logic_error>);
  EXPECT_THAT(told.all, SizeIs(1));
}

}  // namespace
}  // namespace kuv::test
