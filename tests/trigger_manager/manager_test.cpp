// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/manager_test.h"

#include <utility>

namespace kuv::test {

using testing::_;
using testing::Return;

const Json::Value stored_config = json(R"({"triggers": [], "note": "stored configuration"})");
const Json::Value stored_mapping = json(R"({"triggerMapping": [], "note": "stored mapping"})");
const Json::Value new_config = json(R"({"triggers": [], "note": "new configuration"})");
const Json::Value new_mapping = json(R"({"triggerMapping": [], "note": "new mapping"})");

const Trigger_Mapping parsed_stored_mapping{{1001, schedules({1})}, {1002, std::nullopt}};
const Trigger_Mapping parsed_new_mapping{{1003, schedules({3, 4})}};

bool same_mapping(const Trigger_Mapping& left, const Trigger_Mapping& right) {
  const auto same_schedules = [](const auto& a, const auto& b) {
    return a.has_value() == b.has_value() &&
           (!a ||
            std::equal(a->begin(), a->end(), b->begin(), b->end(),
                       [](const auto& x, const auto& y) { return x.schedule == y.schedule; }));
  };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [&](const auto& a, const auto& b) {
                      return a.first == b.first && same_schedules(a.second, b.second);
                    });
}

Error failed_processing(std::string message) {
  return {Error::Category::failed_processing, std::move(message)};
}

Error rejected_document(std::string message) {
  return {Error::Category::rejected_document, std::move(message)};
}

Log_Line error_line(std::string message) {
  return {logging::severity_level::error, "Trigger_Manager", std::move(message)};
}

Log_Line info_line(std::string message) {
  return {logging::severity_level::info, "Trigger_Manager", std::move(message)};
}

Log_Line debug_line(std::string message) {
  return {logging::severity_level::debug, "Trigger_Manager", std::move(message)};
}

Manager_Test::Manager_Test() {
  auto owned_parser = std::make_unique<Strict<Mock_Trigger_Parser>>();
  parser = owned_parser.get();
  manager = std::make_unique<Vemora_Trigger_Manager>(stored_config, stored_mapping,
                                                     database.repository, capture_manager,
                                                     std::move(owned_parser), pusher, resolver);
}

void Manager_Test::expect_parsing(std::vector<Trigger_Config> triggers,
                                  Notification_Properties properties) {
  expect_parsing_of(new_config, stored_mapping, parsed_stored_mapping, std::move(triggers),
                    properties);
}

void Manager_Test::expect_parsing_of(const Json::Value& config, const Json::Value& mapping,
                                     const Trigger_Mapping& parsed_mapping,
                                     std::vector<Trigger_Config> triggers,
                                     Notification_Properties properties) {
  EXPECT_CALL(*parser, parse_config_properties(config)).WillOnce(Return(properties));
  EXPECT_CALL(*parser, parse_trigger_mapping(mapping)).WillOnce(Return(parsed_mapping));
  EXPECT_CALL(*parser, parse_trigger_configs(config, is_mapping(parsed_mapping)))
      .WillOnce(Return(std::move(triggers)));
}

Trigger_Record Manager_Test::expect_found(const Trigger_Config& config) {
  Trigger_Record record = stored(config);
  expect_lookup(config.id, record);
  return record;
}

void Manager_Test::expect_lookup(std::uint64_t id, Trigger_Record answer) {
  EXPECT_CALL(database.triggers, find_by_id(id)).WillOnce(Return(std::move(answer)));
}

void Manager_Test::expect_no_topics(const Trigger_Record& record, const Cameras& cameras) {
  EXPECT_CALL(
      database.subscriptions,
      Get_Matching_Subscriptions(asks_for(subscriptions_holding_outside(record, {}, cameras))))
      .WillOnce(Return(Subscriptions()));
}

void Manager_Test::expect_no_generic_events(const Trigger_Record& record) {
  EXPECT_CALL(database.subscriptions,
              Get_Matching_Subscriptions(asks_for(generic_subscriptions_holding(record))))
      .WillOnce(Return(Subscriptions()));
}

void Manager_Test::expect_no_detection(const Trigger_Record& record) {
  EXPECT_CALL(database.eta_cameras, get(asks_for(maps_holding_outside(record, {}))))
      .WillOnce(Return(ETA_Records()));
}

void Manager_Test::expect_no_sources(const Trigger_Record& record) {
  expect_no_topics(record);
  expect_no_generic_events(record);
  expect_no_detection(record);
}

void Manager_Test::expect_end(std::set<std::uint64_t> applied,
                              std::vector<std::uint64_t> reconciled) {
  expect_nothing_stale(applied);
  expect_clean_up(std::move(applied));
  expect_reconciled(std::move(reconciled));
  expect_push();
}

void Manager_Test::expect_nothing_stale(std::set<std::uint64_t> applied) {
  EXPECT_CALL(database.subscriptions, get_stale(std::move(applied)))
      .WillOnce(Return(Subscriptions()));
}

void Manager_Test::expect_clean_up(std::set<std::uint64_t> applied) {
  if (applied.empty()) {
    EXPECT_CALL(database.triggers, delete_all());
  } else {
    EXPECT_CALL(database.triggers, delete_all_except(std::move(applied)));
  }
  EXPECT_CALL(database.subscriptions, delete_stale());
  EXPECT_CALL(database.eta_cameras, delete_stale());
}

void Manager_Test::expect_reconciled(std::vector<std::uint64_t> cameras) {
  for (const std::uint64_t camera_id : cameras) {
    EXPECT_CALL(*capture_manager, reconcile_metadata_stream(camera_id));
  }
}

void Manager_Test::expect_push() {
  EXPECT_CALL(database.subscriptions, get_stale(std::set<std::uint64_t>()))
      .WillOnce(Return(Subscriptions()));
  EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(ETA_Records()));
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce([this](Trigger_Config_State state) {
    pushed = std::move(state);
  });
}

void Manager_Test::when_the_configuration_is_updated() {
  result = manager->update_config(new_config);
}

void Manager_Test::then_it_succeeds_with(std::vector<Error> errors) {
  EXPECT_EQ(result, (Result{true, std::move(errors)}));
}

}  // namespace kuv::test
