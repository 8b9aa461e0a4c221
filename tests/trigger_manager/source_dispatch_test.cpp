// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <stdexcept>

#include "trigger_manager/manager_test.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

const Terms doors{{"door", std::nullopt}, {"role", "gate"}};

class Source_Dispatch : public Manager_Test {
 protected:
  void expect_cameras_matching(const Terms& filter, const Cameras& answer) {
    EXPECT_CALL(database.cameras, get_cameras_matching_tags(filter)).WillOnce(Return(answer));
  }

  void expect_query(const Subscription_Query& query, const Subscriptions& answer = {}) {
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(asks_for(query)))
        .WillOnce(Return(answer));
  }

  void expect_query(const ETA_Query& query, const ETA_Records& answer = {}) {
    EXPECT_CALL(database.eta_cameras, get(asks_for(query))).WillOnce(Return(answer));
  }

  void expect_stored(const Subscription_Record& subscription) {
    EXPECT_CALL(database.subscriptions, update(subscription)).WillOnce(Return(true));
  }

  void expect_stored(const ETA_Record& map) {
    EXPECT_CALL(database.eta_cameras, update(map)).WillOnce(Return(true));
  }
};

TEST_F(Source_Dispatch, asks_for_no_cameras_without_a_camera_filter_whatever_the_other_filters) {
  const Trigger_Config config = an_active_trigger(7)
                                    .with(onvif("a"))
                                    .with(object_detection("person"))
                                    .for_servers(north)
                                    .for_subscriptions(doors);
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  EXPECT_CALL(database.cameras, get_cameras_needing_subscription("a", IsEmpty()))
      .WillOnce(Return(Cameras()));
  expect_query(topic_subscriptions_lacking(record, {"a"}, {}));
  expect_query(subscriptions_holding_outside(record, {"a"}, {}));
  expect_no_generic_events(record);
  EXPECT_CALL(database.cameras, get_object_detection_cameras(IsEmpty()))
      .WillOnce(Return(Cameras()));
  expect_query(maps_holding_outside(record, {}));
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Source_Dispatch, works_on_the_cameras_that_match_the_camera_filter) {
  const Trigger_Config config = an_active_trigger(7)
                                    .with(onvif("a"))
                                    .with(object_detection("person"))
                                    .with(motion_detection())
                                    .for_cameras(north);
  const Cameras cameras{a_camera(10), a_camera(11)};
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  expect_cameras_matching(north, cameras);
  EXPECT_CALL(database.cameras, get_cameras_needing_subscription("a", cameras))
      .WillOnce(Return(Cameras()));
  expect_query(topic_subscriptions_lacking(record, {"a"}, cameras));
  expect_query(subscriptions_holding_outside(record, {"a"}, cameras));
  expect_no_generic_events(record);
  EXPECT_CALL(database.cameras, get_object_detection_cameras(cameras)).WillOnce(Return(Cameras()));
  EXPECT_CALL(database.cameras, get_motion_detection_cameras(cameras)).WillOnce(Return(Cameras()));
  expect_query(maps_holding_outside(record, {}));
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Source_Dispatch, takes_a_trigger_whose_filter_matches_no_camera_off_all_it_holds) {
  const Trigger_Config config = an_active_trigger(7)
                                    .with(onvif("a"))
                                    .with(object_detection("person"))
                                    .with(motion_detection())
                                    .for_cameras(north);
  const Trigger_Record record = stored(config);
  const auto subscription = a_topic_subscription(3, a_camera(10), "a", {record});
  const auto generic = a_generic_subscription(4, {record});
  const auto map = an_eta_camera(5, a_camera(11), {record});
  expect_parsing({config});
  expect_lookup(7, record);
  expect_cameras_matching(north, {});
  expect_query(subscriptions_holding(record), {subscription, generic});
  expect_stored(subscription);
  expect_stored(generic);
  expect_no_generic_events(record);
  expect_query(maps_holding(record), {map});
  expect_stored(map);
  expect_end({7}, {10});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(subscription->trigger_ids(), IsEmpty());
  EXPECT_THAT(generic->trigger_ids(), IsEmpty());
  EXPECT_THAT(map->triggers, IsEmpty());
}

TEST_F(Source_Dispatch, still_adds_generic_subscriptions_where_the_filter_matches_no_camera) {
  const Trigger_Config config =
      an_active_trigger(7).with(generic_events()).for_cameras(north).for_subscriptions(doors);
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  const auto generic = a_generic_subscription(4);
  expect_cameras_matching(north, {});
  expect_query(subscriptions_holding(record));
  expect_query(generic_subscriptions_lacking(record, doors), {generic});
  expect_stored(generic);
  expect_query(generic_subscriptions_holding_against(record, doors));
  expect_query(maps_holding(record));
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(generic->trigger_ids(), ElementsAre(7));
}

TEST_F(Source_Dispatch, takes_a_trigger_without_topics_off_the_subscriptions_it_held) {
  const Trigger_Config config = an_active_trigger(7).with(generic_events()).for_cameras(north);
  const Trigger_Record record = stored(config);
  const auto subscription = a_topic_subscription(3, a_camera(10), "a", {record});
  const Cameras cameras{a_camera(10)};
  expect_parsing({config});
  expect_lookup(7, record);
  expect_cameras_matching(north, cameras);
  expect_query(subscriptions_holding_outside(record, {}, cameras), {subscription});
  expect_stored(subscription);
  expect_query(generic_subscriptions_lacking(record, {}));
  expect_query(maps_holding_outside(record, {}));
  expect_end({7}, {10});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(subscription->trigger_ids(), IsEmpty());
}

TEST_F(Source_Dispatch, stops_at_the_first_step_that_fails) {
  const Trigger_Config config = an_active_trigger(7).with(object_detection("person"));
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  expect_no_topics(record);
  EXPECT_CALL(database.subscriptions,
              Get_Matching_Subscriptions(asks_for(generic_subscriptions_holding(record))))
      .WillOnce(Throw(std::runtime_error("locked")));
  expect_end({});  // object detection never came to its turn

  when_the_configuration_is_updated();

  then_it_succeeds_with({failed_processing("Trigger 7: Failed to process config (locked).")});
}

// Generic metadata events.

class Generic_Events : public Source_Dispatch {};

TEST_F(Generic_Events, add_the_trigger_where_its_filter_matches_and_take_it_off_elsewhere) {
  const Trigger_Config config =
      an_active_trigger(7).with(generic_events()).for_subscriptions(doors);
  const Trigger_Record record = stored(config);
  const Trigger_Record other = stored(an_active_trigger(1));
  const auto joined = a_generic_subscription(3, {other});
  const auto joined_too = a_generic_subscription(4);
  const auto left = a_generic_subscription(5, {other, record});
  expect_parsing({config});
  expect_lookup(7, record);
  expect_no_topics(record);
  expect_query(generic_subscriptions_lacking(record, doors), {joined, joined_too});
  expect_stored(joined);
  expect_stored(joined_too);
  expect_query(generic_subscriptions_holding_against(record, doors), {left});
  expect_stored(left);
  expect_no_detection(record);
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(joined->trigger_ids(), ElementsAre(1, 7));
  EXPECT_THAT(joined_too->trigger_ids(), ElementsAre(7));
  EXPECT_THAT(left->trigger_ids(), ElementsAre(1));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Generic_Events, with_an_empty_filter_add_the_trigger_and_never_take_it_off) {
  const Trigger_Config config = an_active_trigger(7).with(generic_events());
  expect_parsing({config});
  const Trigger_Record record = expect_found(config);
  const auto joined = a_generic_subscription(3);
  expect_no_topics(record);
  expect_query(generic_subscriptions_lacking(record, {}), {joined});
  expect_stored(joined);
  expect_no_detection(record);
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(joined->trigger_ids(), ElementsAre(7));
}

TEST_F(Generic_Events,
       that_are_no_longer_asked_for_take_the_trigger_off_every_generic_subscription) {
  const Trigger_Config config = an_active_trigger(7).with(onvif("a")).for_subscriptions(doors);
  const Trigger_Record record = stored(config);
  const auto left = a_generic_subscription(3, {record});
  const auto left_too = a_generic_subscription(4, {record});
  expect_parsing({config});
  expect_lookup(7, record);
  EXPECT_CALL(database.cameras, get_cameras_needing_subscription("a", IsEmpty()));
  expect_query(topic_subscriptions_lacking(record, {"a"}, {}));
  expect_query(subscriptions_holding_outside(record, {"a"}, {}));
  expect_query(generic_subscriptions_holding(record), {left, left_too});
  expect_stored(left);
  expect_stored(left_too);
  expect_no_detection(record);
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(left->trigger_ids(), IsEmpty());
  EXPECT_THAT(left_too->trigger_ids(), IsEmpty());
}

TEST_F(Generic_Events, that_are_asked_for_again_change_nothing) {
  const Trigger_Config config =
      an_active_trigger(7).with(generic_events()).for_subscriptions(doors);
  const Trigger_Record record = stored(config);
  const auto joined = a_generic_subscription(3);
  for (const Subscriptions& lacking : {Subscriptions{joined}, Subscriptions()}) {
    expect_parsing({config});
    expect_lookup(7, record);
    expect_no_topics(record);
    expect_query(generic_subscriptions_lacking(record, doors), lacking);
    for (const Subscription_Record& subscription : lacking) {
      expect_stored(subscription);
    }
    expect_query(generic_subscriptions_holding_against(record, doors));
    expect_no_detection(record);
    expect_end({7});
  }

  when_the_configuration_is_updated();
  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(joined->trigger_ids(), ElementsAre(7));
}

TEST_F(Generic_Events, report_each_subscription_that_cannot_be_stored_and_go_on) {
  const Trigger_Config config =
      an_active_trigger(7).with(generic_events()).for_subscriptions(doors);
  const Trigger_Record record = stored(config);
  const auto refused = a_generic_subscription(3);
  const auto joined = a_generic_subscription(4);
  const auto refused_too = a_generic_subscription(5, {record});
  expect_parsing({config});
  expect_lookup(7, record);
  expect_no_topics(record);
  expect_query(generic_subscriptions_lacking(record, doors), {refused, joined});
  EXPECT_CALL(database.subscriptions, update(refused)).WillOnce(Return(false));
  expect_stored(joined);
  expect_query(generic_subscriptions_holding_against(record, doors), {refused_too});
  EXPECT_CALL(database.subscriptions, update(refused_too)).WillOnce(Return(false));
  expect_no_detection(record);
  expect_end({7});

  when_the_configuration_is_updated();

  const std::string adding = "Trigger 7: Failed to add trigger to subscription 3";
  const std::string removing = "Trigger 7: Failed to remove trigger from subscription 5";
  then_it_succeeds_with({failed_processing(adding), failed_processing(removing)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(adding), error_line(removing)));
}

}  // namespace
}  // namespace kuv::test
