// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gtest/gtest.h>
#include <json/value.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/fake_repository.h"
#include "support/json.h"
#include "support/log_capture.h"
#include "trigger_parser/rejection.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {

using namespace kuv::vemora;

/// A failure of the database that nobody below the test knows.
struct Database_Is_Gone {};

/// A parser on server 9, which the database knows and which has no tags.
class Parser_Test : public ::testing::Test {
 protected:
  Parser_Test();

  void given_server_tags(Tag_Map tags);
  void given_server_is_unknown();
  std::shared_ptr<schedule> given_schedule(std::uint64_t id);
  void given_unusable_schedule(std::uint64_t id);

  Trigger_Mapping parse_mapping(const Json::Value& document);
  std::vector<Trigger_Config> parse_configs(const Json::Value& document,
                                            const Trigger_Mapping& mapping = {});
  Notification_Properties parse_properties(const Json::Value& document);

  /// The only trigger of a document; fails the test when it has none or several.
  Trigger_Config parse_only_config(const Json::Value& document,
                                   const Trigger_Mapping& mapping = {});

  /// What the document is rejected with, or "accepted". Fails the test when the rejection is not a
  /// validation error with its code, or when the text is missing in the register.
  Rejection rejection_of_mapping(const Json::Value& document);
  Rejection rejection_of_configs(const Json::Value& document, const Trigger_Mapping& mapping = {});
  Rejection rejection_of_properties(const Json::Value& document);

  /// The same for a configuration with one trigger that has this one source.
  Rejection rejection_of_source(const std::string& source);
  Trigger_Source parse_source(const std::string& source);

  std::vector<std::uint64_t> fetched_schedules() const { return database.schedules.asked; }
  std::vector<std::uint64_t> fetched_servers() const { return database.servers.asked; }

  Log_Capture log;  ///< what is logged during the test
  Fake_Database database;
  std::shared_ptr<Repository> repository = make_fake_repository(database);
  Vemora_Trigger_Parser parser{repository, 9};

 private:
  static Rejection rejection_of(const std::function<void()>& parse);
};

/// A trigger with nothing special about it.
Json::Value a_trigger(std::uint64_t id = 1);

/// A trigger with this "sources" array and nothing else special.
Json::Value a_trigger_with_sources(const std::string& sources);

/// A configuration document of these triggers.
Json::Value configuration(const std::vector<Json::Value>& triggers);

/// The ids of the schedules of a set.
std::vector<std::uint64_t> schedule_ids(const std::set<Trigger_Mapping_Entry>& entries);

/// JSON texts of each kind of value that is not an unsigned 64-bit integer; null is not among them.
const std::vector<std::string>& texts_that_are_no_id();

}  // namespace kuv::test
