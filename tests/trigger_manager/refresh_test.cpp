// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <stdexcept>

#include "trigger_manager/manager_test.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::Return;
using testing::Throw;

const std::string refreshing = "Refreshing the trigger config.";

class Refresh_Triggers : public Manager_Test {
 protected:
  void expect_parsing_of_stored_documents(std::vector<Trigger_Config> triggers,
                                          Notification_Properties properties = {}) {
    expect_parsing_of(stored_config, stored_mapping, parsed_stored_mapping, std::move(triggers),
                      properties);
  }

  /// A state with something in each of its members.
  static Trigger_Config_State a_full_state() {
    Trigger_Config_State state;
    state.applied_triggers[1] = {true};
    state.onvif_topics_by_trigger[2][3] = {"old"};
    state.errors = {rejected_document("old")};
    state.subscriptions_by_trigger[4] = {5};
    state.search_items_by_trigger[6][7] = {{"old", true}};
    using Milliseconds = Notification_Properties::Milliseconds;
    state.properties = {Milliseconds(1), Milliseconds(2), Milliseconds(3), Milliseconds(4)};
    return state;
  }

  void then_the_documents_are_as_before() {
    EXPECT_EQ(manager->get_config(), stored_config);
    EXPECT_EQ(manager->get_trigger_mapping(), stored_mapping);
  }
};

TEST_F(Refresh_Triggers, runs_a_pass_on_the_stored_documents_and_leaves_them) {
  const Trigger_Config config = an_active_trigger(7);
  expect_parsing_of_stored_documents({config});
  expect_no_sources(expect_found(config));
  expect_end({7});

  EXPECT_TRUE(manager->refresh_triggers());

  EXPECT_THAT(log.lines(), ElementsAre(info_line(refreshing)));
  then_the_documents_are_as_before();
}

TEST_F(Refresh_Triggers, says_so_before_it_begins) {
  EXPECT_CALL(*parser, parse_config_properties(_)).WillOnce([this](const Json::Value&) {
    EXPECT_THAT(log.lines(), ElementsAre(info_line(refreshing)));
    return Notification_Properties();
  });
  EXPECT_CALL(*parser, parse_trigger_mapping(_));
  EXPECT_CALL(*parser, parse_trigger_configs(_, _));
  expect_end({});

  EXPECT_TRUE(manager->refresh_triggers());
}

TEST_F(Refresh_Triggers, replaces_all_of_the_callers_state_by_the_outcome) {
  Notification_Properties properties;
  properties.nack_delay = Notification_Properties::Milliseconds(9);
  const Trigger_Config config = an_active_trigger(7);
  expect_parsing_of_stored_documents({config}, properties);
  expect_no_sources(expect_found(config));
  expect_end({7});
  Trigger_Config_State state = a_full_state();

  EXPECT_TRUE(manager->refresh_triggers(state));

  Trigger_Config_State expected;
  expected.applied_triggers[7];
  expected.properties = properties;
  EXPECT_EQ(state, expected);
  EXPECT_EQ(pushed, expected);
}

TEST_F(Refresh_Triggers, replaces_all_of_the_callers_state_by_the_one_error_of_a_failed_pass) {
  EXPECT_CALL(*parser, parse_config_properties(stored_config))
      .WillOnce(Throw(std::runtime_error("bad {} properties")));
  Trigger_Config_State state = a_full_state();

  EXPECT_FALSE(manager->refresh_triggers(state));

  const std::string text = "Encountered error refreshing the trigger config: bad {} properties";
  Trigger_Config_State expected;
  expected.errors = {failed_processing(text)};
  EXPECT_EQ(state, expected);
  EXPECT_THAT(log.lines(), ElementsAre(info_line(refreshing), error_line(text)));
  then_the_documents_are_as_before();
}

TEST_F(Refresh_Triggers, answers_false_and_logs_when_the_pass_fails) {
  EXPECT_CALL(*parser, parse_config_properties(stored_config));
  EXPECT_CALL(*parser, parse_trigger_mapping(stored_mapping))
      .WillOnce(Throw(std::runtime_error("bad mapping")));

  EXPECT_FALSE(manager->refresh_triggers());

  EXPECT_THAT(
      log.lines(),
      ElementsAre(info_line(refreshing),
                  error_line("Encountered error refreshing the trigger config: bad mapping")));
}

TEST_F(Refresh_Triggers, reports_the_failing_pusher_alone_and_not_the_triggers_that_failed_before) {
  expect_parsing_of_stored_documents({an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("locked")));
  expect_nothing_stale({});
  expect_clean_up({});
  EXPECT_CALL(database.subscriptions, get_stale(_)).WillOnce(Return(Subscriptions()));
  EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(ETA_Records()));
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce(Throw(std::runtime_error("no route")));
  Trigger_Config_State state;

  EXPECT_FALSE(manager->refresh_triggers(state));

  const std::string text = "Encountered error refreshing the trigger config: no route";
  Trigger_Config_State expected;
  expected.errors = {failed_processing(text)};
  EXPECT_EQ(state, expected);
  EXPECT_THAT(log.lines(), ElementsAre(info_line(refreshing),
                                       error_line("Trigger 7: Failed to process config (locked)."),
                                       error_line(text)));
}

TEST_F(Refresh_Triggers, succeeds_with_the_failures_of_single_triggers) {
  expect_parsing_of_stored_documents({an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("locked")));
  expect_end({});
  Trigger_Config_State state;

  EXPECT_TRUE(manager->refresh_triggers(state));

  EXPECT_THAT(state.errors,
              ElementsAre(failed_processing("Trigger 7: Failed to process config (locked).")));
}

TEST_F(Refresh_Triggers, lets_through_what_is_no_standard_exception) {
  EXPECT_CALL(*parser, parse_config_properties(_)).WillOnce(Throw(42)).RetiresOnSaturation();
  EXPECT_CALL(*parser, parse_config_properties(_)).WillOnce(Throw(std::string("text")));
  Trigger_Config_State state;

  EXPECT_THROW(manager->refresh_triggers(), int);
  EXPECT_THROW(manager->refresh_triggers(state), std::string);

  EXPECT_THAT(log.lines(), ElementsAre(info_line(refreshing), info_line(refreshing)));
  then_the_documents_are_as_before();
}

TEST_F(Refresh_Triggers, fails_with_the_log_when_that_throws_before_the_pass_begins) {
  const auto core = boost::log::core::get();
  core->set_filter([](const boost::log::attribute_value_set& values) {
    if (*boost::log::extract<logging::severity_level>("Severity", values) ==
        logging::severity_level::info) {
      throw std::runtime_error("the log is full");
    }
    return true;
  });
  Trigger_Config_State state;

  EXPECT_FALSE(manager->refresh_triggers(state));  // and no pass was run

  core->reset_filter();
  const std::string text = "Encountered error refreshing the trigger config: the log is full";
  EXPECT_THAT(state.errors, ElementsAre(failed_processing(text)));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
}

TEST_F(Refresh_Triggers, on_empty_documents_deletes_every_trigger_and_reports_nothing) {
  auto owned_parser = std::make_unique<Strict<Mock_Trigger_Parser>>();
  parser = owned_parser.get();
  manager = std::make_unique<Vemora_Trigger_Manager>(
      json(R"({"triggers": []})"), json(R"({"triggerMapping": []})"), database.repository,
      capture_manager, std::move(owned_parser), pusher, resolver);
  expect_parsing_of(json(R"({"triggers": []})"), json(R"({"triggerMapping": []})"), {}, {});
  expect_end({});
  Trigger_Config_State state;

  EXPECT_TRUE(manager->refresh_triggers(state));

  EXPECT_EQ(state, Trigger_Config_State());
}

TEST_F(Refresh_Triggers, twice_in_a_row_writes_nothing_new_and_reports_the_same) {
  const Trigger_Config created = an_active_trigger(7);
  const Trigger_Config refused = an_active_trigger(8);
  Trigger_Record record;
  const auto keep = [&record](const Trigger_Record& added) {
    record = added;
    return true;
  };
  const auto expect_sources_of_the_new_record = [&] {
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
        .Times(2)
        .WillRepeatedly(Return(Subscriptions()));
    EXPECT_CALL(database.eta_cameras, get(_)).WillOnce(Return(ETA_Records()));
  };
  expect_parsing_of_stored_documents({created, refused});
  expect_lookup(7, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce(keep);
  expect_sources_of_the_new_record();
  expect_lookup(8, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce(Return(false));
  expect_end({7});

  expect_parsing_of_stored_documents({created, refused});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce([&record](std::uint64_t) {
    return record;
  });
  expect_sources_of_the_new_record();
  expect_lookup(8, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce(Return(false));
  expect_end({7});
  Trigger_Config_State first;
  Trigger_Config_State second;

  EXPECT_TRUE(manager->refresh_triggers(first));
  EXPECT_TRUE(manager->refresh_triggers(second));

  EXPECT_THAT(first.errors,
              ElementsAre(failed_processing(
                  "Trigger 8: Failed to process config (Failed to create trigger).")));
  EXPECT_EQ(first, second);
}

}  // namespace
}  // namespace kuv::test
