// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/listeners.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "operations/match/records_of_listeners.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Listeners_Test : public testing::Test, protected Records_Of_Listeners {
 protected:
  Listeners::Ids told_of(const Event& event) { return Listeners(records, resolver).told_of(event); }
  bool may_be_told_of(const Event& event) {
    return Listeners(records, resolver).may_be_told_of(event);
  }
};

TEST_F(Listeners_Test, are_told_of_a_topic_that_they_are_subscribed_to_on_the_camera) {
  records.topics[10]["a"] = {7, 9};
  records.topics[10]["b"] = {8};
  records.topics[11]["a"] = {8};

  EXPECT_THAT(told_of(topic(10, "a")), ElementsAre(7, 9));
  EXPECT_THAT(told_of(topic(11, "a")), ElementsAre(8));
  EXPECT_THAT(told_of(topic(11, "b")), IsEmpty());
  EXPECT_THAT(told_of(topic(12, "a")), IsEmpty());
  EXPECT_TRUE(may_be_told_of(topic(10, "b")));
  EXPECT_FALSE(may_be_told_of(topic(11, "b")));
  EXPECT_FALSE(may_be_told_of(topic(12, "a")));
}

TEST_F(Listeners_Test, are_told_of_an_object_that_they_search_for_where_it_is_detected_for_them) {
  given_trigger(7, {searching("car")});
  given_trigger(8, {searching("car"), searching("dog")});
  given_trigger(9, {searching("car")});
  records.detection[10] = {7, 8};
  records.detection[11] = {9};

  EXPECT_THAT(told_of(object(10, "car")), ElementsAre(7, 8));
  EXPECT_THAT(told_of(object(10, "dog")), ElementsAre(8));
  EXPECT_THAT(told_of(object(11, "car")), ElementsAre(9));
  EXPECT_THAT(told_of(object(11, "dog")), IsEmpty());
  EXPECT_THAT(told_of(object(12, "car")), IsEmpty());
  EXPECT_THAT(told_of(object(10, "cat")), IsEmpty());
  EXPECT_TRUE(may_be_told_of(object(10, "dog")));
  EXPECT_FALSE(may_be_told_of(object(12, "car")));
  EXPECT_FALSE(may_be_told_of(object(10, "cat")));
}

TEST_F(Listeners_Test, that_require_motion_are_not_told_of_an_object_that_stands_still) {
  given_trigger(7, {searching("car", true)});
  given_trigger(8, {searching("car")});
  given_trigger(9, {searching("car", true), searching("vehicle")});
  records.detection[10] = {7, 8, 9};

  EXPECT_THAT(told_of(object(10, "car", true)), ElementsAre(7, 8, 9));
  EXPECT_THAT(told_of(object(10, "car", false)), ElementsAre(8, 9));
}

TEST_F(Listeners_Test, are_told_of_what_a_general_type_stands_for_and_not_of_the_type_itself) {
  given_trigger(7, {searching("vehicle")});
  records.detection[10] = {7};

  EXPECT_THAT(told_of(object(10, "car")), ElementsAre(7));
  EXPECT_THAT(told_of(object(10, "truck")), ElementsAre(7));
  EXPECT_THAT(told_of(object(10, "vehicle")), IsEmpty());
}

TEST_F(Listeners_Test, are_told_of_motion_where_it_is_detected_for_them) {
  given_trigger(7, {watching_motion()});
  given_trigger(8, {searching("car", true)});
  given_trigger(9, {watching_motion()});
  records.detection[10] = {7, 8};
  records.detection[11] = {8};

  EXPECT_THAT(told_of(motion(10)), ElementsAre(7));
  EXPECT_THAT(told_of(motion(11)), IsEmpty());
  EXPECT_THAT(told_of(motion(12)), IsEmpty());
  EXPECT_TRUE(may_be_told_of(motion(10)));
  EXPECT_FALSE(may_be_told_of(motion(12)));
}

TEST_F(Listeners_Test, are_told_of_the_generic_subscriptions_that_they_joined) {
  records.generic[3] = {7, 9};
  records.generic[4] = {};

  EXPECT_THAT(told_of(of_subscription(3)), ElementsAre(7, 9));
  EXPECT_THAT(told_of(of_subscription(4)), IsEmpty());
  EXPECT_THAT(told_of(of_subscription(10)), IsEmpty());
  EXPECT_TRUE(may_be_told_of(of_subscription(3)));
  EXPECT_FALSE(may_be_told_of(of_subscription(10)));
}

TEST_F(Listeners_Test, take_a_camera_and_a_subscription_of_one_id_for_two_places) {
  given_trigger(9, {watching_motion()});
  records.topics[3]["a"] = {7};
  records.generic[3] = {8};
  records.detection[3] = {9};

  EXPECT_THAT(told_of(topic(3, "a")), ElementsAre(7));
  EXPECT_THAT(told_of(of_subscription(3)), ElementsAre(8));
  EXPECT_THAT(told_of(motion(3)), ElementsAre(9));
}

}  // namespace
}  // namespace kuv::test
