// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <optional>
#include <stdexcept>

#include "support/stub_platform/stub_platform.h"
#include "trigger_manager/manager_test.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;
using Id_Set = std::set<std::uint64_t>;

/// Passes over no triggers at all unless a test says otherwise; what matters is how they end.
class End_Of_Pass : public Manager_Test {
 protected:
  void expect_stale(const Id_Set& live, const Subscriptions& answer) {
    EXPECT_CALL(database.subscriptions, get_stale(live)).WillOnce(Return(answer));
  }

  void expect_read_back(const Subscriptions& subscriptions, const ETA_Records& maps) {
    expect_stale({}, subscriptions);
    EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(maps));
  }

  void expect_pushed() {
    EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce([this](Trigger_Config_State state) {
      pushed = std::move(state);
    });
  }

  void expect_resolved(const std::string& name, const std::vector<std::string>& answer) {
    EXPECT_CALL(*resolver, resolve(std::vector<std::string>{name})).WillOnce(Return(answer));
  }

  void given_no_triggers() { expect_parsing({}); }

  /// The steps up to the read-back of a pass over no triggers.
  void given_a_pass_at_its_end() {
    given_no_triggers();
    expect_nothing_stale({});
    expect_clean_up({});
  }
};

TEST_F(End_Of_Pass, gathers_the_cameras_of_stale_subscriptions_before_it_deletes_them) {
  given_no_triggers();
  expect_stale({}, {a_topic_subscription(3, a_camera(12), "a"),
                    a_topic_subscription(4, unloaded_link(10), "b"),
                    a_topic_subscription(5, a_camera(12), "c"), a_generic_subscription(6)});
  expect_clean_up({});
  expect_reconciled({10, 12});
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, asks_for_what_is_stale_beside_the_triggers_that_were_applied) {
  const Trigger_Config applied = an_active_trigger(18446744073709551615U);
  const Trigger_Config too = an_active_trigger(7);
  expect_parsing({applied, an_inactive_trigger(8), an_active_trigger(9), too});
  expect_no_sources(expect_found(applied));
  expect_lookup(8, nullptr);
  EXPECT_CALL(database.triggers, find_by_id(9)).WillOnce(Throw(std::runtime_error("locked")));
  expect_no_sources(expect_found(too));
  expect_stale({7, 18446744073709551615U}, {a_topic_subscription(3, a_camera(10), "a")});
  expect_clean_up({7, 18446744073709551615U});
  expect_reconciled({10});
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds_with({failed_processing("Trigger 9: Failed to process config (locked).")});
}

TEST_F(End_Of_Pass, needs_no_topic_of_a_stale_subscription) {
  given_no_triggers();
  expect_stale({}, {a_topic_subscription(3, a_camera(10), std::nullopt)});
  expect_clean_up({});
  expect_reconciled({10});
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, reconciles_a_camera_once_that_gained_and_lost_subscriptions) {
  const Trigger_Config config = an_active_trigger(7).with(onvif("a"));
  const Camera_Record camera_record = a_camera_sending(10, {"a"});
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  EXPECT_CALL(database.cameras, get_cameras_needing_subscription("a", IsEmpty()))
      .WillOnce(Return(Cameras{camera_record}));
  EXPECT_CALL(database.subscriptions, add(_)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(3);
  EXPECT_CALL(database.eta_cameras, get(_));
  expect_stale({7}, {a_topic_subscription(3, camera_record, "old")});
  expect_clean_up({7});
  expect_reconciled({10});
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, calls_the_capture_manager_for_no_camera_when_none_changed) {
  given_no_triggers();
  expect_stale({}, {a_generic_subscription(3)});
  expect_clean_up({});
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, goes_on_after_a_camera_that_cannot_be_reconciled_and_only_logs_it) {
  given_no_triggers();
  expect_stale(
      {}, {a_topic_subscription(3, a_camera(10), "a"), a_topic_subscription(4, a_camera(11), "a"),
           a_topic_subscription(5, a_camera(12), "a")});
  expect_clean_up({});
  EXPECT_CALL(*capture_manager, reconcile_metadata_stream(10))
      .WillOnce(Throw(std::runtime_error("{} timed out")));
  expect_reconciled({11});
  EXPECT_CALL(*capture_manager, reconcile_metadata_stream(12))
      .WillOnce(Throw(std::bad_function_call()));
  expect_push();

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(
      log.lines(),
      ElementsAre(error_line("Failed to reconcile metadata stream for camera 10: {} timed out"),
                  error_line(std::string("Failed to reconcile metadata stream for camera 12: ") +
                             std::bad_function_call().what())));
  EXPECT_THAT(pushed->errors, IsEmpty());
}

TEST_F(End_Of_Pass, forgets_the_cameras_it_has_reconciled) {
  given_no_triggers();
  expect_stale({}, {a_topic_subscription(3, a_camera(10), "a")});
  expect_clean_up({});
  expect_reconciled({10});
  expect_push();
  given_no_triggers();
  expect_end({});

  when_the_configuration_is_updated();
  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, of_an_inactive_trigger_reconciles_the_cameras_it_is_taken_off) {
  const Trigger_Config config = an_inactive_trigger(7);
  const Trigger_Record record = stored(config);
  const Trigger_Record other = stored(an_active_trigger(1));
  const auto subscription = a_topic_subscription(3, a_camera(10), "a", {record, other});
  const auto generic = a_generic_subscription(4, {record});
  const auto map = an_eta_camera(5, a_camera(11), {record, other});
  const auto map_too = an_eta_camera(6, a_camera(12), {record});
  expect_parsing({config});
  expect_lookup(7, record);
  EXPECT_CALL(database.subscriptions,
              Get_Matching_Subscriptions(asks_for(subscriptions_holding(record))))
      .WillOnce(Return(Subscriptions{subscription, generic}));
  EXPECT_CALL(database.subscriptions, update(subscription)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, update(generic)).WillOnce(Return(true));
  EXPECT_CALL(database.eta_cameras, get(asks_for(maps_holding(record))))
      .WillOnce(Return(ETA_Records{map, map_too}));
  EXPECT_CALL(database.eta_cameras, update(map)).WillOnce(Return(true));
  EXPECT_CALL(database.eta_cameras, update(map_too)).WillOnce(Return(true));
  expect_end({}, {10});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(subscription->trigger_ids(), ElementsAre(1));
  EXPECT_THAT(generic->trigger_ids(), IsEmpty());
  EXPECT_THAT(map->triggers, ElementsAre(other));
  EXPECT_THAT(map_too->triggers, IsEmpty());
}

TEST_F(End_Of_Pass, of_an_inactive_trigger_reports_what_it_cannot_be_taken_off) {
  const Trigger_Config config = an_inactive_trigger(7);
  const Trigger_Record record = stored(config);
  expect_parsing({config});
  expect_lookup(7, record);
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
      .WillOnce(Return(Subscriptions{a_topic_subscription(3, a_camera(10), "a", {record})}));
  EXPECT_CALL(database.subscriptions, update(_)).WillOnce(Return(false));
  EXPECT_CALL(database.eta_cameras, get(_))
      .WillOnce(Return(ETA_Records{an_eta_camera(5, a_camera(11), {record})}));
  EXPECT_CALL(database.eta_cameras, update(_)).WillOnce(Return(false));
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds_with(
      {failed_processing("Trigger 7: Failed to remove trigger from subscription 3 | ONVIF topic "
                         "\"a\", camera ID 10"),
       failed_processing(
           "Trigger 7: Failed to remove trigger from object detection map | camera ID 11")});
}

// What the pusher is told.

TEST_F(End_Of_Pass, tells_the_pusher_even_if_nobody_listens_to_anything) {
  given_a_pass_at_its_end();
  expect_read_back({}, {});
  expect_pushed();

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_EQ(pushed, Trigger_Config_State());
}

TEST_F(End_Of_Pass, tells_the_pusher_the_topics_of_each_trigger_by_camera) {
  const Trigger_Record five = stored(an_active_trigger(5));
  const Trigger_Record seven = stored(an_active_trigger(7));
  given_a_pass_at_its_end();
  expect_read_back({a_topic_subscription(3, a_camera(11), "b", {seven, five}),
                    a_topic_subscription(4, unloaded_link(10), "a", {seven}),
                    a_topic_subscription(5, a_camera(11), "a", {seven})},
                   {});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.onvif_topics_by_trigger = {{5, {{11, {"b"}}}}, {7, {{10, {"a"}}, {11, {"a", "b"}}}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_a_topic_once_that_two_subscriptions_of_a_camera_deliver) {
  const Trigger_Record record = stored(an_active_trigger(7));
  given_a_pass_at_its_end();
  expect_read_back({a_topic_subscription(3, a_camera(10), "a", {record}),
                    a_topic_subscription(4, a_camera(10), "a", {record})},
                   {});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.onvif_topics_by_trigger = {{7, {{10, {"a"}}}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_the_generic_subscriptions_of_each_trigger) {
  const Trigger_Record five = stored(an_active_trigger(5));
  const Trigger_Record seven = stored(an_active_trigger(7));
  given_a_pass_at_its_end();
  expect_read_back({a_generic_subscription(9, {five, seven}), a_generic_subscription(3, {seven}),
                    a_generic_subscription(9, {five})},
                   {});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.subscriptions_by_trigger = {{5, {9}}, {7, {3, 9}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_nothing_of_subscriptions_that_serve_nobody) {
  given_a_pass_at_its_end();
  expect_read_back({a_topic_subscription(3, a_camera(10), "a"), a_generic_subscription(4)}, {});
  expect_pushed();

  when_the_configuration_is_updated();

  EXPECT_EQ(pushed, Trigger_Config_State());
}

TEST_F(End_Of_Pass, tells_the_pusher_a_subscription_without_a_camera_by_id_even_if_it_has_a_topic) {
  const Trigger_Record record = stored(an_active_trigger(7));
  given_a_pass_at_its_end();
  expect_read_back({a_topic_subscription(3, {}, "a", {record})}, {});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.subscriptions_by_trigger = {{7, {3}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_what_detection_searches_for_by_camera) {
  const Trigger_Record five =
      stored(an_active_trigger(5).with(object_detection("vehicle", true)).with(onvif("a")));
  const Trigger_Record seven = stored(an_active_trigger(7)
                                          .with(object_detection("person"))
                                          .with(object_detection("animal"))
                                          .with(motion_detection()));
  given_a_pass_at_its_end();
  expect_read_back({}, {an_eta_camera(3, a_camera(11), {seven, five}),
                        an_eta_camera(4, unloaded_link(10), {five})});
  expect_resolved("vehicle", {"truck", "car"});
  expect_resolved("animal", {"dog"});
  expect_resolved("person", {"person"});
  expect_resolved("vehicle", {"car"});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.search_items_by_trigger = {
      {5, {{10, {{"car", true}}}, {11, {{"car", true}, {"truck", true}}}}},
      {7, {{11, {{"dog", false}, {"person", false}}}}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_an_empty_set_for_a_trigger_that_searches_for_nothing) {
  Trigger_Source without_item = object_detection("person");
  without_item.search_item.reset();
  Trigger_Source item_of_another_kind = motion_detection();
  item_of_another_kind.search_item = Object_Search_Item{"person", false};
  const Trigger_Record topics = stored(an_active_trigger(5).with(onvif("a")).with(onvif("b")));
  const Trigger_Record others =
      stored(an_active_trigger(7).with(without_item).with(item_of_another_kind));
  given_a_pass_at_its_end();
  expect_read_back({}, {an_eta_camera(3, a_camera(10), {topics, others})});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.search_items_by_trigger = {{5, {{10, {}}}}, {7, {{10, {}}}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass, tells_the_pusher_the_later_of_two_searches_on_one_camera) {
  const Trigger_Record first = stored(an_active_trigger(7).with(object_detection("person")));
  const Trigger_Record second = stored(an_active_trigger(7).with(object_detection("vehicle")));
  given_a_pass_at_its_end();
  expect_read_back(
      {}, {an_eta_camera(3, a_camera(10), {first}), an_eta_camera(4, a_camera(10), {second})});
  expect_resolved("person", {"person"});
  expect_resolved("vehicle", {"car"});
  expect_pushed();

  when_the_configuration_is_updated();

  Trigger_Config_State expected;
  expected.search_items_by_trigger = {{7, {{10, {{"car", false}}}}}};
  EXPECT_EQ(pushed, expected);
}

TEST_F(End_Of_Pass,
       fails_at_a_subscription_with_a_camera_and_no_topic_and_tells_the_pusher_nothing) {
  given_a_pass_at_its_end();
  expect_stale({}, {a_topic_subscription(3, a_camera(10), std::nullopt)});

  when_the_configuration_is_updated();

  const std::string text = "Failed to update trigger config: bad optional access";
  EXPECT_EQ(result, (Result{false, {failed_processing(text)}}));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
  EXPECT_EQ(manager->get_config(), stored_config);
}

/// The calls of the platform's functions while it lives, in order.
struct Noted_Calls {
  std::vector<std::string> all;
  stub_platform::Listening listening{
      [this](stub_platform::Function, const std::string& call) { all.push_back(call); }};
};

TEST_F(End_Of_Pass, reads_camera_topic_and_triggers_of_a_subscription_in_that_order) {
  given_a_pass_at_its_end();
  expect_read_back({a_topic_subscription(3, a_camera(10), "a")}, {});
  expect_pushed();
  const Noted_Calls calls;

  when_the_configuration_is_updated();

  EXPECT_THAT(calls.all, ElementsAre("subscription 3: camera_id", "subscription 3: trigger_ids"));
}

TEST_F(End_Of_Pass, asks_a_subscription_without_a_topic_for_its_camera_and_not_for_its_triggers) {
  given_a_pass_at_its_end();
  expect_stale({}, {a_topic_subscription(3, a_camera(10), std::nullopt)});
  const Noted_Calls calls;

  when_the_configuration_is_updated();

  EXPECT_FALSE(result.success);
  EXPECT_THAT(calls.all, ElementsAre("subscription 3: camera_id"));
}

TEST_F(End_Of_Pass, asks_a_detection_record_without_a_camera_for_its_camera_too) {
  given_a_pass_at_its_end();
  expect_read_back({}, {an_eta_camera(3, {})});
  const stub_platform::Listening failing([](stub_platform::Function, const std::string& call) {
    EXPECT_EQ(call, "eta_camera 3: camera_id");
    throw std::runtime_error("no camera");
  });

  when_the_configuration_is_updated();

  EXPECT_EQ(result,
            (Result{false, {failed_processing("Failed to update trigger config: no camera")}}));
}

TEST_F(End_Of_Pass, that_meets_such_a_subscription_throws_from_an_update_of_the_mapping) {
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {});
  expect_nothing_stale({});
  expect_clean_up({});
  expect_stale({}, {a_topic_subscription(3, unloaded_link(10), std::nullopt)});

  EXPECT_THROW(manager->update_trigger_mapping(new_mapping), std::bad_optional_access);

  EXPECT_EQ(manager->get_trigger_mapping(), stored_mapping);
}

TEST_F(End_Of_Pass, that_meets_such_a_subscription_fails_a_refresh) {
  expect_parsing_of(stored_config, stored_mapping, parsed_stored_mapping, {});
  expect_nothing_stale({});
  expect_clean_up({});
  expect_stale({}, {a_topic_subscription(3, a_camera(10), std::nullopt)});
  Trigger_Config_State state;

  EXPECT_FALSE(manager->refresh_triggers(state));

  EXPECT_THAT(state.errors,
              ElementsAre(failed_processing(
                  "Encountered error refreshing the trigger config: bad optional access")));
}

TEST_F(End_Of_Pass, gives_up_the_lists_it_read_before_it_goes_on) {
  const auto subscription = a_generic_subscription(3);
  const auto map = an_eta_camera(4, a_camera(10));
  const std::weak_ptr<metadata_event_subscription> watched_subscription = subscription;
  const std::weak_ptr<eta_camera> watched_map = map;
  given_a_pass_at_its_end();
  EXPECT_CALL(database.subscriptions, get_stale(_)).WillOnce([&subscription](const Id_Set&) {
    return Subscriptions{std::move(const_cast<Subscription_Record&>(subscription))};
  });
  EXPECT_CALL(database.eta_cameras, get_all()).WillOnce([&] {
    EXPECT_TRUE(watched_subscription.expired());
    return ETA_Records{std::move(const_cast<ETA_Record&>(map))};
  });
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce([&](const Trigger_Config_State&) {
    EXPECT_TRUE(watched_map.expired());
  });

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(End_Of_Pass, gives_the_pusher_a_copy_of_its_own) {
  const Trigger_Record record = stored(an_active_trigger(7));
  Trigger_Config_State handed_over;
  expect_parsing_of(stored_config, new_mapping, parsed_new_mapping, {});
  expect_nothing_stale({});
  expect_clean_up({});
  expect_read_back({a_generic_subscription(3, {record})}, {});
  EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce([&](Trigger_Config_State state) {
    handed_over = state;
    state.errors.push_back(failed_processing("the pusher's own"));
    state.subscriptions_by_trigger.clear();
  });

  const Trigger_Config_State answered = manager->update_trigger_mapping(new_mapping);

  Trigger_Config_State expected;
  expected.subscriptions_by_trigger = {{7, {3}}};
  EXPECT_EQ(answered, expected);
  EXPECT_EQ(handed_over, expected);
}

}  // namespace
}  // namespace kuv::test
