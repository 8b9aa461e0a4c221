// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/parser_test.h"

#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {

Parser_Test::Parser_Test() {
  given_server_tags({});
}

void Parser_Test::given_server_tags(Tag_Map tags) {
  database.servers.records[9] = std::make_shared<server>(server{9, "north", std::move(tags)});
}

void Parser_Test::given_server_is_unknown() {
  database.servers.records.clear();
}

std::shared_ptr<schedule> Parser_Test::given_schedule(std::uint64_t id) {
  const auto record = std::make_shared<schedule>(schedule{id, "", true});
  database.schedules.records[id] = record;
  return record;
}

void Parser_Test::given_unusable_schedule(std::uint64_t id) {
  given_schedule(id)->usable = false;
}

Trigger_Mapping Parser_Test::parse_mapping(const Json::Value& document) {
  return parser.parse_trigger_mapping(document);
}

std::vector<Trigger_Config> Parser_Test::parse_configs(const Json::Value& document,
                                                       const Trigger_Mapping& mapping) {
  return parser.parse_trigger_configs(document, mapping);
}

Notification_Properties Parser_Test::parse_properties(const Json::Value& document) {
  return parser.parse_config_properties(document);
}

Trigger_Config Parser_Test::parse_only_config(const Json::Value& document,
                                              const Trigger_Mapping& mapping) {
  const std::vector<Trigger_Config> configs = parse_configs(document, mapping);
  EXPECT_EQ(configs.size(), 1U);
  return configs.at(0);
}

Rejection Parser_Test::rejection_of_mapping(const Json::Value& document) {
  return rejection_of([&] { parse_mapping(document); });
}

Rejection Parser_Test::rejection_of_configs(const Json::Value& document,
                                            const Trigger_Mapping& mapping) {
  return rejection_of([&] { parse_configs(document, mapping); });
}

Rejection Parser_Test::rejection_of_properties(const Json::Value& document) {
  return rejection_of([&] { parse_properties(document); });
}

Rejection Parser_Test::rejection_of_source(const std::string& source) {
  return rejection_of_configs(configuration({a_trigger_with_sources("[" + source + "]")}));
}

Trigger_Source Parser_Test::parse_source(const std::string& source) {
  const Trigger_Config config =
      parse_only_config(configuration({a_trigger_with_sources("[" + source + "]")}));
  EXPECT_EQ(config.sources.size(), 1U);
  return *config.sources.begin();
}

Rejection Parser_Test::rejection_of(const std::function<void()>& parse) {
  try {
    parse();
  } catch (const Vemora_Error<std::runtime_error>& error) {
    EXPECT_EQ(typeid(error), typeid(Backend_Error<std::runtime_error>));
    EXPECT_EQ(error.error_code, 245760);
    EXPECT_TRUE(is_registered(error.what())) << "not in the register of messages: " << error.what();
    return Rejection(error.what());
  }
  return Rejection("accepted");
}

Json::Value a_trigger(std::uint64_t id) {
  Json::Value trigger =
      json(R"({"name": "gate", "tags": {}, "sources": [{"type": "metadata-event"}]})");
  trigger["id"] = Json::UInt64(id);
  return trigger;
}

Json::Value a_trigger_with_sources(const std::string& sources) {
  return with(a_trigger(), "sources", sources);
}

Json::Value configuration(const std::vector<Json::Value>& triggers) {
  Json::Value document = json(R"({"triggers": []})");
  for (const Json::Value& trigger : triggers) {
    document["triggers"].append(trigger);
  }
  return document;
}

std::vector<std::uint64_t> schedule_ids(const std::set<Trigger_Mapping_Entry>& entries) {
  std::vector<std::uint64_t> ids;
  for (const Trigger_Mapping_Entry& entry : entries) {
    ids.push_back(entry.schedule->id);
  }
  return ids;
}

const std::vector<std::string>& texts_that_are_no_id() {
  static const std::vector<std::string> texts{"true", "-1",    "-9223372036854775808",
                                              "0.5",  "-0.5",  "18446744073709551616",
                                              "1e20", "\"1\"", "\"\"",
                                              "[]",   "[1]",   "{}"};
  return texts;
}

}  // namespace kuv::test
