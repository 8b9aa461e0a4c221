// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Why a trigger is not told of an event, as `match` says it of one event.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "operations/match/records_of_listeners.h"
#include "operations/small_site.h"
#include "vemora/operations/match/match.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Near_Misses : public Small_Site {
 protected:
  Match matched(const Event& event) { return operations::match(database(), server_id, event); }

  static std::vector<std::string> told(const Match& match) {
    std::vector<std::string> texts;
    for (const Match::Trigger& trigger : match.triggers) {
      texts.push_back(std::to_string(trigger.id) + " " + trigger.name);
    }
    return texts;
  }

  /// "7 trigger 7: code: text"
  std::vector<std::string> near_misses(const Event& event) {
    std::vector<std::string> texts;
    for (const Match::Near_Miss& near_miss : matched(event).near_misses) {
      for (const std::string& reason : texts_of(near_miss.reasons)) {
        texts.push_back(std::to_string(near_miss.trigger.id) + " " + near_miss.trigger.name + ": " +
                        reason);
      }
    }
    return texts;
  }
};

TEST_F(Near_Misses, are_the_triggers_that_have_a_source_for_such_events_ascending) {
  apply({a_trigger(9, on_topic("a"), at_gate), a_trigger(8, on_topic("a"), at_gate),
         a_trigger(7, on_topic("a"), at_dock), a_trigger(6, on_topic("b"), at_gate)});

  EXPECT_THAT(told(matched(topic(11, "a"))), ElementsAre("7 trigger 7"));
  EXPECT_THAT(near_misses(topic(11, "a")),
              ElementsAre("8 trigger 8: camera-filter: The camera filter asks for area=gate; "
                          "camera 11 has area=dock.",
                          "9 trigger 9: camera-filter: The camera filter asks for area=gate; "
                          "camera 11 has area=dock."));
  EXPECT_THAT(near_misses(topic(11, "b")),
              ElementsAre("6 trigger 6: camera-filter: The camera filter asks for area=gate; "
                          "camera 11 has area=dock."));
}

TEST_F(Near_Misses, by_capabilities) {
  apply({a_trigger(7, on_topic("b"))});
  EXPECT_THAT(near_misses(topic(11, "b")),
              ElementsAre("7 trigger 7: topic-not-supported: Camera 11 does not support \"b\"."));

  site.given_camera(11).without_topic("a");
  site.store_in(database());
  EXPECT_THAT(near_misses(topic(11, "b")),
              ElementsAre("7 trigger 7: no-metadata-capabilities: The capabilities of camera 11 "
                          "name no topic at all."));
}

TEST_F(Near_Misses, by_what_makes_the_trigger_inactive) {
  apply({a_trigger(7, on_topic("a"), R"("server": {"site": "north"})"),
         a_trigger(8, on_object("car"), "", R"(, "scheduleIds": [2])"),
         a_trigger(9, on_subscriptions, "", R"(, "scheduleIds": [5])")});

  EXPECT_THAT(near_misses(topic(10, "a")),
              ElementsAre("7 trigger 7: server-filter: The server filter asks for site=north; "
                          "server 1 (\"one\") has no tags."));
  EXPECT_THAT(near_misses(object(10, "car")),
              ElementsAre("8 trigger 8: schedule-not-usable: Schedule 2 (\"\") is not usable; the "
                          "trigger's own list names it."));
  EXPECT_THAT(near_misses(of_subscription(3)),
              ElementsAre("9 trigger 9: schedule-not-found: Schedule 5 does not exist; the "
                          "trigger's own list names it."));
}

TEST_F(Near_Misses, by_detection) {
  apply({a_trigger(7, on_object("car"), at_gate), a_trigger(8, on_motion)});
  site.given_camera(11).detecting_objects(false);
  site.store_in(database());

  EXPECT_THAT(near_misses(motion(11)),
              ElementsAre("8 trigger 8: no-motion-detection: Camera 11 takes no part in motion "
                          "detection."));
  EXPECT_THAT(near_misses(object(11, "car")),
              ElementsAre("7 trigger 7: camera-filter: The camera filter asks for area=gate; "
                          "camera 11 has area=dock.",
                          "7 trigger 7: no-object-detection: Camera 11 takes no part in object "
                          "detection."));
}

TEST_F(Near_Misses, by_the_type_of_the_object_and_its_motion) {
  apply({a_trigger(7, on_object("vehicle")), a_trigger(8, on_object("car", true)),
         a_trigger(9, on_object("car", true) + "," + on_object("vehicle"))});

  EXPECT_THAT(told(matched(object(10, "car"))), ElementsAre("7 trigger 7", "9 trigger 9"));
  EXPECT_THAT(near_misses(object(10, "car")),
              ElementsAre("8 trigger 8: motion-required: It asks for \"car\" in motion; this one "
                          "stands still."));
  EXPECT_THAT(near_misses(object(10, "car", true)), IsEmpty());
  EXPECT_THAT(near_misses(object(10, "vehicle")),
              ElementsAre("7 trigger 7: general-object-type: Object type \"vehicle\" stands for "
                          "car, truck; what is detected has one of those.",
                          "9 trigger 9: general-object-type: Object type \"vehicle\" stands for "
                          "car, truck; what is detected has one of those."));
}

TEST_F(Near_Misses, by_the_filter_for_subscriptions) {
  apply({a_trigger(7, on_subscriptions),
         a_trigger(8, on_subscriptions, R"("eventSubscription": {"door": "back"})")});

  EXPECT_THAT(told(matched(of_subscription(3))), ElementsAre("7 trigger 7"));
  EXPECT_THAT(near_misses(of_subscription(3)),
              ElementsAre("8 trigger 8: subscription-filter: The filter for subscriptions asks "
                          "for door=back; subscription 3 has door=main."));
}

TEST_F(Near_Misses, that_a_refresh_would_end) {
  apply({a_trigger(7, on_topic("a") + "," + on_object("car"))});
  foreign_program().execute("DELETE FROM subscription_trigger");
  foreign_program().execute("DELETE FROM eta_camera_trigger");

  const char* const reason = "7 trigger 7: not-refreshed: A refresh would let it be told of this.";
  EXPECT_THAT(near_misses(topic(10, "a")), ElementsAre(reason));
  EXPECT_THAT(near_misses(object(10, "car")), ElementsAre(reason));
}

TEST_F(Near_Misses, know_the_cameras_of_the_site_and_those_that_records_name) {
  apply({a_trigger(7, on_topic("a"), at_dock), a_trigger(8, on_object("car"), at_gate)});
  EXPECT_TRUE(matched(motion(10)).is_known);
  EXPECT_FALSE(matched(motion(12)).is_known);
  EXPECT_FALSE(matched(motion(3)).is_known);
  EXPECT_TRUE(matched(of_subscription(3)).is_known);
  EXPECT_FALSE(matched(of_subscription(10)).is_known);

  foreign_program().execute("DELETE FROM camera");
  EXPECT_TRUE(matched(topic(11, "a")).is_known);
  EXPECT_TRUE(matched(object(10, "car")).is_known);
  EXPECT_FALSE(matched(motion(12)).is_known);
  EXPECT_THAT(near_misses(object(11, "car")),
              ElementsAre("8 trigger 8: camera-not-found: The site has no camera 11; only records "
                          "name it."));
}

}  // namespace
}  // namespace kuv::test
