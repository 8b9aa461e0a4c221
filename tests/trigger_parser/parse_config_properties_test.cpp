// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>
#include <json/json.h>

#include "embedded_server/logging/logging_core.h"
#include "support/log_capture.h"
#include "trigger_parser/counted_formatting.h"
#include "trigger_parser/parser_test.h"

namespace kuv::test {
namespace {

using kuv::logging::severity_level;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Milliseconds = Notification_Properties::Milliseconds;

constexpr char properties_are_no_object[] = "\"properties\" must be a JSON object.";

struct Setting {
  const char* key;
  std::optional<Milliseconds> Notification_Properties::*field;
  std::uint32_t milliseconds_per_unit;
};

/// In the order in which they are read.
constexpr Setting settings[] = {
    {"notificationMaxLatencySecs", &Notification_Properties::max_latency, 1000},
    {"notificationDigestCooldownMins", &Notification_Properties::digest_cooldown, 60000},
    {"notificationAckTimeoutSecs", &Notification_Properties::ack_timeout, 1000},
    {"notificationNackDelayMs", &Notification_Properties::nack_delay, 1},
};

std::string message_for(const Setting& setting) {
  return std::string("\"properties.") + setting.key + "\" must be an unsigned integer.";
}

struct Parse_Config_Properties : Parser_Test {
  Notification_Properties parse(const std::string& properties) {
    return parse_properties(with(Json::objectValue, "properties", properties));
  }
  std::optional<Milliseconds> parse(const Setting& setting, const std::string& value) {
    return parse(object(setting, value)).*setting.field;
  }
  Rejection rejection_of(const std::string& properties) {
    return rejection_of_properties(with(Json::objectValue, "properties", properties));
  }
  static std::string object(const Setting& setting, const std::string& value) {
    return std::string("{\"") + setting.key + "\": " + value + "}";
  }
};

void expect_unset(const Notification_Properties& properties) {
  for (const Setting& setting : settings) {
    SCOPED_TRACE(setting.key);
    EXPECT_FALSE(properties.*setting.field);
  }
}

std::uint32_t milliseconds(const std::optional<Milliseconds>& duration) {
  return duration.value().count();
}

TEST_F(Parse_Config_Properties, leaves_everything_unset_where_there_are_no_properties) {
  expect_unset(parse_properties(json("{}")));
  expect_unset(parse_properties(json(R"({"triggers": "unread"})")));
  expect_unset(parse_properties(json("null")));
  expect_unset(parse("null"));
  expect_unset(parse("{}"));
}

TEST_F(Parse_Config_Properties, rejects_properties_that_are_no_object) {
  for (const char* text : {"[]", "5", "0", "\"\"", "true", "false", "[{}]"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(rejection_of(text), properties_are_no_object);
  }
}

TEST_F(Parse_Config_Properties, leaves_it_to_the_json_library_to_refuse_a_document_without_keys) {
  for (const char* text : {"[]", "5", "\"\"", "true"}) {
    SCOPED_TRACE(text);
    EXPECT_THROW(parse_properties(json(text)), Json::LogicError);
  }
}

TEST_F(Parse_Config_Properties, takes_every_setting_in_its_own_unit) {
  const Notification_Properties properties =
      parse(R"({"notificationMaxLatencySecs": 30, "notificationDigestCooldownMins": 5,
                "notificationAckTimeoutSecs": 7, "notificationNackDelayMs": 250})");

  EXPECT_EQ(milliseconds(properties.max_latency), 30'000U);
  EXPECT_EQ(milliseconds(properties.digest_cooldown), 300'000U);
  EXPECT_EQ(milliseconds(properties.ack_timeout), 7'000U);
  EXPECT_EQ(milliseconds(properties.nack_delay), 250U);
}

TEST_F(Parse_Config_Properties, takes_each_setting_alone) {
  for (const Setting& given : settings) {
    SCOPED_TRACE(given.key);
    const Notification_Properties properties = parse(object(given, "2"));
    for (const Setting& setting : settings) {
      SCOPED_TRACE(setting.key);
      EXPECT_EQ((properties.*setting.field).has_value(), setting.field == given.field);
    }
    EXPECT_EQ(milliseconds(properties.*given.field), 2 * given.milliseconds_per_unit);
  }
}

TEST_F(Parse_Config_Properties, leaves_a_null_setting_unset) {
  for (const Setting& setting : settings) {
    SCOPED_TRACE(setting.key);
    EXPECT_FALSE(parse(setting, "null"));
  }
}

TEST_F(Parse_Config_Properties, tells_zero_from_unset) {
  for (const Setting& setting : settings) {
    SCOPED_TRACE(setting.key);
    EXPECT_EQ(milliseconds(parse(setting, "0")), 0U);
    EXPECT_EQ(milliseconds(parse(setting, "0.0")), 0U);
  }
}

TEST_F(Parse_Config_Properties, takes_a_whole_valued_double) {
  for (const Setting& setting : settings) {
    SCOPED_TRACE(setting.key);
    EXPECT_EQ(milliseconds(parse(setting, "3.0")), 3 * setting.milliseconds_per_unit);
    EXPECT_EQ(milliseconds(parse(setting, "1e1")), 10 * setting.milliseconds_per_unit);
  }
}

TEST_F(Parse_Config_Properties, wraps_at_32_bits) {
  const auto [max_latency, digest_cooldown, ack_timeout, nack_delay] = settings;

  EXPECT_EQ(milliseconds(parse(max_latency, "4294967")), 4'294'967'000U);
  EXPECT_EQ(milliseconds(parse(max_latency, "4294968")), 704U);
  EXPECT_EQ(milliseconds(parse(max_latency, "4294967295")), 4'294'966'296U);
  EXPECT_EQ(milliseconds(parse(max_latency, "4294968.0")), 704U);
  EXPECT_EQ(milliseconds(parse(digest_cooldown, "71582")), 4'294'920'000U);
  EXPECT_EQ(milliseconds(parse(digest_cooldown, "71583")), 12'704U);
  EXPECT_EQ(milliseconds(parse(digest_cooldown, "4294967295")), 4'294'907'296U);
  EXPECT_EQ(milliseconds(parse(ack_timeout, "4294968")), 704U);
  EXPECT_EQ(milliseconds(parse(nack_delay, "4294967295")), 4'294'967'295U);
}

TEST_F(Parse_Config_Properties, rejects_a_setting_that_is_no_unsigned_32_bit_integer) {
  for (const Setting& setting : settings) {
    for (const char* text : {"-1", "0.5", "-0.5", "4294967296", "4294967296.0", "1e20", "\"5\"",
                             "\"\"", "true", "false", "[]", "[5]", "{}"}) {
      SCOPED_TRACE(object(setting, text));
      EXPECT_EQ(rejection_of(object(setting, text)), message_for(setting));
    }
  }
}

TEST_F(Parse_Config_Properties, tells_the_first_fault_in_the_order_of_its_checks) {
  Json::Value properties = json(R"({"notificationNackDelayMs": -1, "notificationAckTimeoutSecs": -1,
      "notificationMaxLatencySecs": -1, "notificationDigestCooldownMins": -1})");

  for (const Setting& setting : settings) {
    EXPECT_EQ(rejection_of(properties.toStyledString()), message_for(setting));
    properties[setting.key] = 1;
  }
  EXPECT_EQ(rejection_of(properties.toStyledString()), "accepted");
}

TEST_F(Parse_Config_Properties, ignores_other_keys) {
  expect_unset(parse(R"({"maxLatency": -1, "notificationmaxlatencysecs": -1, "": []})"));
}

TEST_F(Parse_Config_Properties, asks_the_database_nothing) {
  Vemora_Trigger_Parser without_database(nullptr, 9);

  EXPECT_EQ(milliseconds(without_database
                             .parse_config_properties(
                                 json(R"({"properties": {"notificationNackDelayMs": 5}})"))
                             .nack_delay),
            5U);
}

// The log line

TEST_F(Parse_Config_Properties, logs_what_it_parsed) {
  parse(R"({"notificationMaxLatencySecs": 30, "notificationDigestCooldownMins": 5,
            "notificationAckTimeoutSecs": 4294968, "notificationNackDelayMs": 0})");

  EXPECT_THAT(log.lines(),
              ElementsAre(Log_Line{severity_level::debug, "Trigger_Parser",
                                   "Parsed trigger config properties | max_latency=30000ms | "
                                   "digest_cooldown=300000ms | ack_timeout=704ms | "
                                   "nack_delay=0ms"}));
}

TEST_F(Parse_Config_Properties, logs_a_default_for_what_is_unset) {
  parse_properties(json("{}"));
  parse(R"({"notificationDigestCooldownMins": 5, "notificationNackDelayMs": null})");

  EXPECT_THAT(
      log.lines(),
      ElementsAre(Log_Line{severity_level::debug, "Trigger_Parser",
                           "Parsed trigger config properties | max_latency=default | "
                           "digest_cooldown=default | ack_timeout=default | nack_delay=default"},
                  Log_Line{severity_level::debug, "Trigger_Parser",
                           "Parsed trigger config properties | max_latency=default | "
                           "digest_cooldown=300000ms | ack_timeout=default | nack_delay=default"}));
}

TEST_F(Parse_Config_Properties, logs_nothing_about_properties_that_it_rejects) {
  rejection_of("[]");
  rejection_of(R"({"notificationMaxLatencySecs": 30, "notificationNackDelayMs": -1})");

  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Parse_Config_Properties, logs_nothing_while_logging_is_disabled) {
  const Logging_Disabled disabled;

  EXPECT_EQ(milliseconds(parse(R"({"notificationNackDelayMs": 5})").nack_delay), 5U);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Parse_Config_Properties, logs_nothing_where_the_core_filters_its_level) {
  {
    const Lines_Filtered_Below filter(severity_level::info);
    EXPECT_EQ(milliseconds(parse(R"({"notificationNackDelayMs": 5})").nack_delay), 5U);
    EXPECT_THAT(log.lines(), IsEmpty());
  }
  const Lines_Filtered_Below filter(severity_level::debug);
  parse("{}");
  EXPECT_THAT(log.lines(), ::testing::SizeIs(1));
}

// A line that nobody takes

struct Suppressed_Properties_Line : Parse_Config_Properties {
  int texts_formatted_by_parsing() {
    const Json::Value document =
        json(R"({"properties": {"notificationMaxLatencySecs": 30, "notificationNackDelayMs": 0}})");
    const int before = texts_formatted();
    parse_properties(document);
    return texts_formatted() - before;
  }
};

TEST_F(Suppressed_Properties_Line, is_not_formatted_while_logging_is_disabled) {
  const Logging_Disabled disabled;
  EXPECT_EQ(texts_formatted_by_parsing(), 0);
}

TEST_F(Suppressed_Properties_Line, is_not_formatted_where_the_core_filters_its_level) {
  const Lines_Filtered_Below filter(severity_level::info);
  EXPECT_EQ(texts_formatted_by_parsing(), 0);
}

TEST_F(Suppressed_Properties_Line, is_formatted_in_one_go_once_it_is_taken) {
  EXPECT_EQ(texts_formatted_by_parsing(), 1);
}

}  // namespace
}  // namespace kuv::test
