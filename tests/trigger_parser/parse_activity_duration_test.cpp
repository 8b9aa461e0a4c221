// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <chrono>

#include "trigger_parser/parser_test.h"

namespace kuv::test {
namespace {

using namespace std::chrono_literals;

constexpr char duration_is_no_object[] = "\"activityDuration\" must be a JSON object.";
constexpr char mode_not_a_string[] = "\"activityDuration.mode\" must be a string.";
constexpr char unknown_mode[] =
    "\"activityDuration.mode\" must be \"object-presence\" or \"object-track\".";
constexpr char bad_min_duration[] = "\"activityDuration.minDurationMs\" is missing or invalid.";
constexpr char min_duration_out_of_range[] =
    "\"activityDuration.minDurationMs\" must be between 1000 and 28800000.";
constexpr char no_dropout[] = "\"activityDuration.dropoutMs\" is missing or invalid.";
constexpr char bad_dropout[] = "\"activityDuration.dropoutMs\" must be an unsigned integer.";
constexpr char dropout_out_of_range[] =
    "\"activityDuration.dropoutMs\" must be between 1000 and 600000.";

/// JSON texts that are no unsigned 32-bit integer; null is not among them.
const std::vector<std::string> no_unsigned_integers{"true",         "-1",   "1000.5", "4294967296",
                                                    "4294967296.0", "1e20", "\"5\"",  "\"5000\"",
                                                    "[]",           "{}",   "[5000]"};

/// The two types of source that can have an activity duration.
class Parse_Activity_Duration : public Parser_Test {
 protected:
  static std::string object_detection(const std::string& activity) {
    return R"({"type": "object-detection", "searchItem": {"type": "person"},
               "activityDuration": )" +
           activity + "}";
  }
  static std::string motion_detection(const std::string& activity) {
    return R"({"type": "motion-detection", "activityDuration": )" + activity + "}";
  }

  void expect_both_rejected(const std::string& activity, const std::string& message) {
    SCOPED_TRACE(activity);
    EXPECT_EQ(rejection_of_source(object_detection(activity)), message);
    EXPECT_EQ(rejection_of_source(motion_detection(activity)), message);
  }

  Activity_Duration of_objects(const std::string& activity) {
    return parse_source(object_detection(activity)).activity_duration.value();
  }
  Activity_Duration of_motion(const std::string& activity) {
    return parse_source(motion_detection(activity)).activity_duration.value();
  }
};

TEST_F(Parse_Activity_Duration, leaves_it_unset_when_it_is_null_or_absent) {
  EXPECT_FALSE(parse_source(object_detection("null")).activity_duration);
  EXPECT_FALSE(parse_source(motion_detection("null")).activity_duration);
  EXPECT_FALSE(parse_source(R"({"type": "object-detection", "searchItem": {"type": "person"}})")
                   .activity_duration);
  EXPECT_FALSE(parse_source(R"({"type": "motion-detection"})").activity_duration);
}

TEST_F(Parse_Activity_Duration, rejects_what_is_no_object) {
  for (const char* text : {"5", "true", "false", "\"5s\"", "[]", "0"}) {
    expect_both_rejected(text, duration_is_no_object);
  }
}

TEST_F(Parse_Activity_Duration, takes_every_field) {
  const Activity_Duration objects =
      of_objects(R"({"mode": "object-track", "minDurationMs": 5000, "dropoutMs": 1500})");
  EXPECT_EQ(objects.mode, Activity_Duration_Mode::object_track);
  EXPECT_EQ(objects.min_duration, 5'000'000us);
  EXPECT_EQ(objects.dropout, 1'500'000us);

  const Activity_Duration motion = of_motion(R"({"minDurationMs": 2000, "dropoutMs": 3000})");
  EXPECT_EQ(motion.mode, Activity_Duration_Mode::object_presence);
  EXPECT_EQ(motion.min_duration, 2'000'000us);
  EXPECT_EQ(motion.dropout, 3'000'000us);
}

TEST_F(Parse_Activity_Duration, ignores_the_other_fields_of_a_motion_source) {
  const Trigger_Source source = parse_source(
      R"({"type": "motion-detection", "onvifTopic": 5, "searchItem": 5,
          "activityDuration": {"minDurationMs": 1000, "dropoutMs": 1000, "unit": 5}})");

  EXPECT_FALSE(source.onvif_topic);
  EXPECT_FALSE(source.search_item);
  EXPECT_TRUE(source.activity_duration);
}

// "mode"

TEST_F(Parse_Activity_Duration, measures_presence_unless_told_otherwise) {
  EXPECT_EQ(of_objects(R"({"minDurationMs": 1000, "dropoutMs": 1000})").mode,
            Activity_Duration_Mode::object_presence);
  EXPECT_EQ(of_objects(R"({"mode": null, "minDurationMs": 1000, "dropoutMs": 1000})").mode,
            Activity_Duration_Mode::object_presence);
  EXPECT_EQ(
      of_objects(R"({"mode": "object-presence", "minDurationMs": 1000, "dropoutMs": 1000})").mode,
      Activity_Duration_Mode::object_presence);
  EXPECT_EQ(
      of_objects(R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": 1000})").mode,
      Activity_Duration_Mode::object_track);
}

TEST_F(Parse_Activity_Duration, rejects_a_mode_that_is_no_string) {
  for (const char* text : {"0", "1", "true", "[]", "{}", R"(["object-track"])"}) {
    expect_both_rejected(
        std::string("{\"mode\": ") + text + R"(, "minDurationMs": 1000, "dropoutMs": 1000})",
        mode_not_a_string);
  }
}

TEST_F(Parse_Activity_Duration, rejects_a_mode_that_is_not_written_exactly) {
  for (const char* text : {"", "Object-Track", "OBJECT-PRESENCE", "object_track", "track",
                           "object-track ", "object-track\\u0000"}) {
    expect_both_rejected(
        std::string("{\"mode\": \"") + text + R"(", "minDurationMs": 1000, "dropoutMs": 1000})",
        unknown_mode);
  }
}

TEST_F(Parse_Activity_Duration, measures_presence_of_motion_whatever_mode_is_written) {
  EXPECT_EQ(of_motion(R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": 1000})").mode,
            Activity_Duration_Mode::object_presence);
}

// "minDurationMs"

TEST_F(Parse_Activity_Duration, takes_one_second_to_eight_hours) {
  EXPECT_EQ(of_objects(R"({"minDurationMs": 1000, "dropoutMs": 1000})").min_duration, 1s);
  EXPECT_EQ(of_objects(R"({"minDurationMs": 28800000, "dropoutMs": 1000})").min_duration, 8h);
  EXPECT_EQ(of_motion(R"({"minDurationMs": 1000, "dropoutMs": 1000})").min_duration, 1s);
  EXPECT_EQ(of_motion(R"({"minDurationMs": 28800000, "dropoutMs": 1000})").min_duration, 8h);
}

TEST_F(Parse_Activity_Duration, takes_a_whole_valued_double_as_a_duration) {
  EXPECT_EQ(of_objects(R"({"minDurationMs": 5000.0, "dropoutMs": 1e3})").min_duration, 5s);
  EXPECT_EQ(of_objects(R"({"minDurationMs": 5000.0, "dropoutMs": 1e3})").dropout, 1s);
}

TEST_F(Parse_Activity_Duration, rejects_a_duration_out_of_range) {
  for (const char* text : {"1", "999", "28800001", "2147483648", "4294967295", "999.0"}) {
    expect_both_rejected(std::string("{\"minDurationMs\": ") + text + R"(, "dropoutMs": 1000})",
                         min_duration_out_of_range);
  }
}

TEST_F(Parse_Activity_Duration, rejects_a_duration_that_is_missing_zero_or_no_unsigned_integer) {
  expect_both_rejected("{}", bad_min_duration);
  expect_both_rejected(R"({"dropoutMs": 1000})", bad_min_duration);
  expect_both_rejected(R"({"minDurationMs": null, "dropoutMs": 1000})", bad_min_duration);
  expect_both_rejected(R"({"minDurationMs": 0, "dropoutMs": 1000})", bad_min_duration);
  expect_both_rejected(R"({"minDurationMs": 0.0, "dropoutMs": 1000})", bad_min_duration);
  for (const std::string& text : no_unsigned_integers) {
    expect_both_rejected("{\"minDurationMs\": " + text + R"(, "dropoutMs": 1000})",
                         bad_min_duration);
  }
}

// "dropoutMs"

TEST_F(Parse_Activity_Duration, takes_a_dropout_of_one_second_to_ten_minutes) {
  EXPECT_EQ(of_objects(R"({"minDurationMs": 1000, "dropoutMs": 1000})").dropout, 1s);
  EXPECT_EQ(of_objects(R"({"minDurationMs": 1000, "dropoutMs": 600000})").dropout, 10min);
  EXPECT_EQ(of_motion(R"({"minDurationMs": 1000, "dropoutMs": 600000})").dropout, 10min);
  EXPECT_EQ(
      of_objects(R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": 600000})").dropout,
      10min);
}

TEST_F(Parse_Activity_Duration, rejects_a_dropout_out_of_range) {
  for (const char* text : {"0", "1", "999", "600001", "4294967295", "0.0"}) {
    expect_both_rejected(std::string(R"({"minDurationMs": 1000, "dropoutMs": )") + text + "}",
                         dropout_out_of_range);
    EXPECT_EQ(rejection_of_source(object_detection(
                  std::string(R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": )") +
                  text + "}")),
              dropout_out_of_range);
  }
}

TEST_F(Parse_Activity_Duration, rejects_a_dropout_that_is_no_unsigned_integer) {
  for (const std::string& text : no_unsigned_integers) {
    expect_both_rejected(R"({"minDurationMs": 1000, "dropoutMs": )" + text + "}", bad_dropout);
    EXPECT_EQ(rejection_of_source(object_detection(
                  R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": )" + text + "}")),
              bad_dropout);
  }
}

TEST_F(Parse_Activity_Duration, needs_no_dropout_to_track_an_object) {
  const Activity_Duration absent = of_objects(R"({"mode": "object-track", "minDurationMs": 1000})");
  EXPECT_EQ(absent.mode, Activity_Duration_Mode::object_track);
  EXPECT_EQ(absent.dropout, 0us);
  EXPECT_EQ(
      of_objects(R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": null})").dropout,
      0us);
}

TEST_F(Parse_Activity_Duration, needs_a_dropout_to_measure_presence) {
  expect_both_rejected(R"({"minDurationMs": 1000})", no_dropout);
  expect_both_rejected(R"({"minDurationMs": 1000, "dropoutMs": null})", no_dropout);
  expect_both_rejected(R"({"mode": "object-presence", "minDurationMs": 1000})", no_dropout);
  expect_both_rejected(R"({"mode": null, "minDurationMs": 1000, "dropoutMs": null})", no_dropout);
}

TEST_F(Parse_Activity_Duration, needs_a_dropout_for_motion_even_where_a_track_is_asked_for) {
  EXPECT_EQ(
      rejection_of_source(motion_detection(R"({"mode": "object-track", "minDurationMs": 1000})")),
      no_dropout);
  EXPECT_EQ(rejection_of_source(motion_detection(
                R"({"mode": "object-track", "minDurationMs": 1000, "dropoutMs": null})")),
            no_dropout);
}

// Which fault is told when there are several

TEST_F(Parse_Activity_Duration, tells_the_first_fault_in_the_order_of_its_checks) {
  Json::Value activity = json(R"({"mode": 5, "minDurationMs": "5", "dropoutMs": "5"})");
  const auto expect_next = [&](const char* message) {
    expect_both_rejected(activity.toStyledString(), message);
  };

  expect_next(mode_not_a_string);
  activity["mode"] = "track";
  expect_next(unknown_mode);
  activity["mode"] = "object-presence";
  expect_next(bad_min_duration);
  activity["minDurationMs"] = 999;
  expect_next(min_duration_out_of_range);
  activity["minDurationMs"] = 1000;
  expect_next(bad_dropout);
  activity["dropoutMs"] = 999;
  expect_next(dropout_out_of_range);
  activity["dropoutMs"] = Json::nullValue;
  expect_next(no_dropout);
  activity["dropoutMs"] = 1000;
  expect_next("accepted");
}

}  // namespace
}  // namespace kuv::test
