// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/json.h"
#include "support/log_capture.h"
#include "trigger_manager/builders.h"
#include "trigger_manager/printers.h"
#include "trigger_manager/queries.h"
#include "vemora/testing/mocks/mock_capture_manager.h"
#include "vemora/testing/mocks/mock_meta_type_resolver.h"
#include "vemora/testing/mocks/mock_repository.h"
#include "vemora/testing/mocks/mock_trigger_notification_pusher.h"
#include "vemora/testing/mocks/mock_trigger_parser.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::test {

using Directive_Config_Processing::Error;
using Directive_Config_Processing::Result;

/// The documents that the manager of a test holds at first, and those that replace them.
extern const Json::Value stored_config;
extern const Json::Value stored_mapping;
extern const Json::Value new_config;
extern const Json::Value new_mapping;

/// What the parser makes of the mappings, told apart by the trigger that they are about.
extern const Trigger_Mapping parsed_stored_mapping;
extern const Trigger_Mapping parsed_new_mapping;

/// Equal as what it was parsed from.
bool same_mapping(const Trigger_Mapping& left, const Trigger_Mapping& right);
MATCHER_P(is_mapping, expected, "is the mapping that was parsed") {
  return same_mapping(arg, expected);
}

/// The text that log and error have of something refused or failed.
Error failed_processing(std::string message);
Error rejected_document(std::string message);
Log_Line error_line(std::string message);
Log_Line info_line(std::string message);
Log_Line debug_line(std::string message);

/// A manager over strict mocks. Whatever is called must be expected, and in that order. The
/// expect_... verbs stand for the steps of a pass that a test is not about, doing nothing.
class Manager_Test : public testing::Test {
 protected:
  template <class Mock>
  using Strict = testing::StrictMock<Mock>;

  Manager_Test();

  // The reading of the documents by an update of the configuration; it answers these triggers.
  void expect_parsing(std::vector<Trigger_Config> triggers,
                      Notification_Properties properties = {});
  void expect_parsing_of(const Json::Value& config, const Json::Value& mapping,
                         const Trigger_Mapping& parsed_mapping,
                         std::vector<Trigger_Config> triggers,
                         Notification_Properties properties = {});

  /// The database holds the trigger as configured, and answers this record.
  Trigger_Record expect_found(const Trigger_Config& config);
  void expect_lookup(std::uint64_t id, Trigger_Record answer);

  /// The trigger has no topics and sits on no subscription.
  void expect_no_topics(const Trigger_Record& record, const Cameras& cameras = {});
  /// The trigger has no generic source and sits on no generic subscription.
  void expect_no_generic_events(const Trigger_Record& record);
  /// The trigger has no sources to be detected and sits on no detection record.
  void expect_no_detection(const Trigger_Record& record);
  /// The three together.
  void expect_no_sources(const Trigger_Record& record);

  /// The end of a pass that applied these triggers: nothing is stale, these cameras are reconciled,
  /// and the pusher is told of no listeners.
  void expect_end(std::set<std::uint64_t> applied, std::vector<std::uint64_t> reconciled = {});
  void expect_nothing_stale(std::set<std::uint64_t> applied);
  void expect_clean_up(std::set<std::uint64_t> applied);
  void expect_reconciled(std::vector<std::uint64_t> cameras);
  void expect_push();

  /// Updates the configuration; the answer is in `result`.
  void when_the_configuration_is_updated();

  /// Whether it succeeded with exactly these errors.
  void then_it_succeeds_with(std::vector<Error> errors);
  void then_it_succeeds() { then_it_succeeds_with({}); }

  Log_Capture log;
  Mock_Repository database;
  std::shared_ptr<Strict<Mock_Capture_Manager>> capture_manager =
      std::make_shared<Strict<Mock_Capture_Manager>>();
  std::shared_ptr<Strict<Mock_Trigger_Notification_Pusher>> pusher =
      std::make_shared<Strict<Mock_Trigger_Notification_Pusher>>();
  std::shared_ptr<Strict<Mock_Meta_Type_Resolver>> resolver =
      std::make_shared<Strict<Mock_Meta_Type_Resolver>>();
  Strict<Mock_Trigger_Parser>* parser;  ///< the manager's alone
  std::unique_ptr<Trigger_Manager> manager;
  std::optional<Trigger_Config_State> pushed;  ///< what expect_push saw
  Result result;

 private:
  testing::InSequence in_order_;
};

}  // namespace kuv::test
