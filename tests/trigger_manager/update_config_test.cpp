// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <stdexcept>

#include "trigger_manager/manager_test.h"
#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::Return;
using testing::Throw;
using Milliseconds = Notification_Properties::Milliseconds;

const Notification_Properties some_properties{Milliseconds(30000), std::nullopt, Milliseconds(5000),
                                              Milliseconds(0)};

class Update_Config : public Manager_Test {
 protected:
  void expect_taken_off_everything(const Trigger_Record& record) {
    EXPECT_CALL(database.subscriptions,
                Get_Matching_Subscriptions(asks_for(subscriptions_holding(record))))
        .WillOnce(Return(Subscriptions()));
    EXPECT_CALL(database.eta_cameras, get(asks_for(maps_holding(record))))
        .WillOnce(Return(ETA_Records()));
  }

  void then_the_stored_documents_are(const Json::Value& config, const Json::Value& mapping) {
    EXPECT_EQ(manager->get_config(), config);
    EXPECT_EQ(manager->get_trigger_mapping(), mapping);
  }
};

TEST_F(Update_Config, reads_properties_mapping_and_triggers_and_stores_the_document) {
  expect_parsing({});
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds();
  then_the_stored_documents_are(new_config, stored_mapping);
  EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(Update_Config, deletes_every_trigger_record_for_a_configuration_without_triggers) {
  expect_parsing({});
  expect_nothing_stale({});
  EXPECT_CALL(database.triggers, delete_all());
  EXPECT_CALL(database.subscriptions, delete_stale());
  EXPECT_CALL(database.eta_cameras, delete_stale());
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_EQ(pushed, Trigger_Config_State());
}

TEST_F(Update_Config, hands_the_notification_properties_to_the_pusher) {
  expect_parsing({}, some_properties);
  expect_end({});

  when_the_configuration_is_updated();

  EXPECT_EQ(pushed->properties, some_properties);
}

TEST_F(Update_Config, forgets_the_properties_of_the_pass_before) {
  expect_parsing({}, some_properties);
  expect_end({});
  expect_parsing({});
  expect_end({});

  when_the_configuration_is_updated();
  when_the_configuration_is_updated();

  EXPECT_EQ(pushed->properties, Notification_Properties());
}

TEST_F(Update_Config, applies_the_triggers_in_the_order_of_the_document) {
  const std::vector<Trigger_Config> triggers{an_active_trigger(30), an_active_trigger(10),
                                             an_active_trigger(20)};
  expect_parsing(triggers);
  for (const Trigger_Config& config : triggers) {
    expect_no_sources(expect_found(config));
  }
  expect_end({10, 20, 30});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Update_Config, notes_the_options_of_the_triggers_applied) {
  const Trigger_Config scheduled = an_active_trigger(7);
  const Trigger_Config at_any_time = an_active_trigger(8).at_any_time();
  expect_parsing({scheduled, at_any_time});
  expect_no_sources(expect_found(scheduled));
  expect_no_sources(expect_found(at_any_time));
  expect_end({7, 8});

  when_the_configuration_is_updated();

  EXPECT_EQ(pushed->applied_triggers,
            (std::map<std::uint64_t, Trigger_Config::Options>{{7, {false}}, {8, {true}}}));
}

TEST_F(Update_Config, processes_two_triggers_of_one_id_and_keeps_the_first_ones_options) {
  const Trigger_Config first = an_active_trigger(7).at_any_time();
  const Trigger_Config second = an_active_trigger(7);
  expect_parsing({first, second});
  expect_no_sources(expect_found(first));
  expect_no_sources(expect_found(second));
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_EQ(pushed->applied_triggers,
            (std::map<std::uint64_t, Trigger_Config::Options>{{7, {true}}}));
}

TEST_F(Update_Config, passes_over_an_inactive_trigger_without_a_record) {
  expect_parsing({an_inactive_trigger(7), an_active_trigger(8).without_valid_schedule()});
  expect_lookup(7, nullptr);
  expect_lookup(8, nullptr);
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_EQ(pushed, Trigger_Config_State());
}

TEST_F(Update_Config, takes_a_trigger_of_another_server_off_everything_and_has_it_deleted) {
  const Trigger_Config elsewhere = an_active_trigger(7).of_another_server();
  const Trigger_Config here = an_active_trigger(8);
  expect_parsing({elsewhere, here});
  expect_taken_off_everything(expect_found(elsewhere));
  expect_no_sources(expect_found(here));
  expect_end({8});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_EQ(pushed->applied_triggers.count(7), 0U);
}

TEST_F(Update_Config, treats_a_trigger_whose_schedule_is_invalid_the_same) {
  const Trigger_Config config = an_active_trigger(7).without_valid_schedule();
  expect_parsing({config});
  expect_taken_off_everything(expect_found(config));
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Update_Config, treats_a_trigger_that_is_inactive_in_both_ways_the_same) {
  const Trigger_Config config = an_active_trigger(7).of_another_server().without_valid_schedule();
  expect_parsing({config});
  expect_taken_off_everything(expect_found(config));
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Update_Config, reports_a_trigger_whose_record_cannot_be_created_and_goes_on) {
  const Trigger_Config refused = an_active_trigger(7);
  const Trigger_Config next = an_active_trigger(8);
  expect_parsing({refused, next});
  expect_lookup(7, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce(Return(false));
  expect_no_sources(expect_found(next));
  expect_end({8});

  when_the_configuration_is_updated();

  const std::string text = "Trigger 7: Failed to process config (Failed to create trigger).";
  then_it_succeeds_with({failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
  EXPECT_THAT(pushed->errors, ElementsAre(failed_processing(text)));
  EXPECT_EQ(manager->get_config(), new_config);
}

TEST_F(Update_Config, reports_the_failures_of_triggers_in_the_order_in_which_they_happen) {
  const Trigger_Config first = an_active_trigger(18446744073709551615U);
  const Trigger_Config second = an_active_trigger(7);
  expect_parsing({first, second, first});
  EXPECT_CALL(database.triggers, find_by_id(first.id))
      .WillOnce(Throw(std::logic_error("{0} 100%")));
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("")));
  EXPECT_CALL(database.triggers, find_by_id(first.id))
      .WillOnce(Throw(std::logic_error("{0} 100%")));
  expect_end({});

  when_the_configuration_is_updated();

  const std::string text = "Trigger 18446744073709551615: Failed to process config ({0} 100%).";
  const std::string empty = "Trigger 7: Failed to process config ().";
  then_it_succeeds_with(
      {failed_processing(text), failed_processing(empty), failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text), error_line(empty), error_line(text)));
}

TEST_F(Update_Config, leaves_what_a_failed_trigger_had_written_and_has_its_record_deleted) {
  const Trigger_Config config = an_active_trigger(7).named("new name");
  const Trigger_Record record = stored(an_active_trigger(7));
  const Trigger_Config next = an_active_trigger(8);
  expect_parsing({config, next});
  expect_lookup(7, record);
  EXPECT_CALL(database.triggers, update(record)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
      .WillOnce(Throw(std::runtime_error("the disk is full")));
  expect_no_sources(expect_found(next));
  expect_end({8});  // its record is written, and not among those kept

  when_the_configuration_is_updated();

  EXPECT_EQ(record->name, "new name");
  then_it_succeeds_with(
      {failed_processing("Trigger 7: Failed to process config (the disk is full).")});
}

TEST_F(Update_Config, has_the_record_of_an_inactive_trigger_deleted_whose_removal_fails) {
  const Trigger_Config config = an_inactive_trigger(7);
  expect_parsing({config});
  expect_lookup(7, stored(config));
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
      .WillOnce(Throw(std::runtime_error("the disk is full")));
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds_with(
      {failed_processing("Trigger 7: Failed to process config (the disk is full).")});
}

TEST_F(Update_Config, answers_one_error_for_a_document_that_is_rejected_and_keeps_the_old_one) {
  EXPECT_CALL(*parser, parse_config_properties(new_config));
  EXPECT_CALL(*parser, parse_trigger_mapping(stored_mapping));
  EXPECT_CALL(*parser, parse_trigger_configs(new_config, _))
      .WillOnce(Throw(Backend_Error<std::runtime_error>("Missing \"triggers\" array.",
                                                        error_codes::invalid_document)));

  when_the_configuration_is_updated();

  const std::string text = "Failed to parse trigger config: Missing \"triggers\" array.";
  EXPECT_EQ(result, (Result{false, {rejected_document(text)}}));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
  then_the_stored_documents_are(stored_config, stored_mapping);
}

TEST_F(Update_Config,
       answers_one_error_for_a_pass_that_fails_at_its_end_and_keeps_the_old_document) {
  expect_parsing({an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("locked")));
  expect_nothing_stale({});
  expect_clean_up({});
  EXPECT_CALL(database.subscriptions, get_stale(_)).WillOnce(Return(Subscriptions()));
  EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(ETA_Records()));
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce(Throw(std::runtime_error("no {} route")));

  when_the_configuration_is_updated();

  const std::string of_trigger = "Trigger 7: Failed to process config (locked).";
  const std::string text = "Failed to update trigger config: no {} route";
  EXPECT_EQ(result, (Result{false, {failed_processing(text)}}));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(of_trigger), error_line(text)));
  then_the_stored_documents_are(stored_config, stored_mapping);
}

TEST_F(Update_Config, lets_through_what_is_no_standard_exception) {
  EXPECT_CALL(*parser, parse_config_properties(_)).WillOnce(Throw(42));

  EXPECT_THROW(manager->update_config(new_config), int);

  EXPECT_THAT(log.lines(), ElementsAre());
  then_the_stored_documents_are(stored_config, stored_mapping);
}

TEST_F(Update_Config, uses_the_mapping_that_was_stored_last) {
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {});
  expect_end({});
  expect_parsing_of(new_config, new_mapping, parsed_new_mapping, {});
  expect_end({});

  manager->update_trigger_mapping(new_mapping);
  when_the_configuration_is_updated();

  then_it_succeeds();
  then_the_stored_documents_are(new_config, new_mapping);
}

TEST_F(Update_Config, stores_the_document_as_it_was_given_without_completing_it) {
  const Json::Value config = json(R"({"properties": {}})");
  expect_parsing_of(config, stored_mapping, parsed_stored_mapping, {});
  expect_end({});

  manager->update_config(config);

  EXPECT_EQ(manager->get_config(), config);
}

class Update_Trigger_Mapping : public Update_Config {};

TEST_F(Update_Trigger_Mapping, runs_a_pass_on_the_stored_configuration_and_stores_the_mapping) {
  const Trigger_Config config = an_active_trigger(7).at_any_time();
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {config}, some_properties);
  expect_no_sources(expect_found(config));
  expect_end({7});

  const Trigger_Config_State state = manager->update_trigger_mapping(new_mapping);

  Trigger_Config_State expected;
  expected.applied_triggers[7] = {true};
  expected.properties = some_properties;
  EXPECT_EQ(state, expected);
  EXPECT_EQ(pushed, expected);
  then_the_stored_documents_are(stored_config, new_mapping);
  EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(Update_Trigger_Mapping, answers_all_that_the_pusher_was_told) {
  const Trigger_Config config = an_active_trigger(7);
  const Trigger_Record record = stored(config);
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {config});
  expect_lookup(7, record);
  expect_no_sources(record);
  expect_nothing_stale({7});
  expect_clean_up({7});
  EXPECT_CALL(database.subscriptions, get_stale(_))
      .WillOnce(Return(Subscriptions{a_generic_subscription(3, {record}),
                                     a_topic_subscription(4, a_camera(10), "a", {record})}));
  EXPECT_CALL(database.eta_cameras, get_all())
      .WillOnce(Return(ETA_Records{an_eta_camera(5, a_camera(11), {record})}));
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce([this](Trigger_Config_State state) {
    pushed = std::move(state);
  });

  const Trigger_Config_State state = manager->update_trigger_mapping(new_mapping);

  Trigger_Config_State expected;
  expected.applied_triggers[7];
  expected.onvif_topics_by_trigger[7][10] = {"a"};
  expected.subscriptions_by_trigger[7] = {3};
  expected.search_items_by_trigger[7][11] = {};
  EXPECT_EQ(state, expected);
  EXPECT_EQ(pushed, expected);
}

TEST_F(Update_Trigger_Mapping, answers_the_failures_of_single_triggers_with_the_state) {
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("locked")));
  expect_end({});

  const Trigger_Config_State state = manager->update_trigger_mapping(new_mapping);

  const std::string text = "Trigger 7: Failed to process config (locked).";
  EXPECT_THAT(state.errors, ElementsAre(failed_processing(text)));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
  then_the_stored_documents_are(stored_config, new_mapping);
}

TEST_F(Update_Trigger_Mapping, throws_what_the_parser_throws_and_keeps_the_old_mapping) {
  const std::string text = "\"triggerMapping\" array is missing or invalid.";
  EXPECT_CALL(*parser, parse_config_properties(stored_config));
  EXPECT_CALL(*parser, parse_trigger_mapping(new_mapping))
      .WillOnce(Throw(Backend_Error<std::runtime_error>(text, error_codes::invalid_document)));

  try {
    manager->update_trigger_mapping(new_mapping);
    FAIL() << "it threw nothing";
  } catch (const Backend_Error<std::runtime_error>& error) {
    EXPECT_EQ(error.what(), text);
    EXPECT_EQ(error.error_code, 245760);
  }
  EXPECT_THAT(log.lines(), ElementsAre());
  then_the_stored_documents_are(stored_config, stored_mapping);
}

TEST_F(Update_Trigger_Mapping, throws_what_the_pusher_throws_and_keeps_the_old_mapping) {
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {});
  expect_nothing_stale({});
  expect_clean_up({});
  EXPECT_CALL(database.subscriptions, get_stale(_)).WillOnce(Return(Subscriptions()));
  EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(ETA_Records()));
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce(Throw(std::out_of_range("no route")));

  EXPECT_THROW(manager->update_trigger_mapping(new_mapping), std::out_of_range);

  EXPECT_THAT(log.lines(), ElementsAre());
  then_the_stored_documents_are(stored_config, stored_mapping);
}

TEST_F(Update_Trigger_Mapping, stores_the_mapping_as_it_was_given_without_completing_it) {
  const Json::Value mapping = json(R"({"other": 1})");
  expect_parsing_of(stored_config, mapping, parsed_new_mapping, {});
  expect_end({});

  manager->update_trigger_mapping(mapping);

  EXPECT_EQ(manager->get_trigger_mapping(), mapping);
}

}  // namespace
}  // namespace kuv::test
