// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// What is said of a trigger as a whole, and of the places where it listens or does not.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "operations/small_site.h"
#include "vemora/operations/explain/explain.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vemora::operations::Explanation;
using State = Explanation::State;

class Trigger_States : public Small_Site {
 protected:
  Explanation explained(std::uint64_t trigger_id,
                        std::optional<std::uint64_t> camera_id = std::nullopt) {
    return vemora::operations::explain(database(), server_id, trigger_id, camera_id);
  }

  std::vector<std::string> reasons(std::uint64_t trigger_id) {
    return texts_of(explained(trigger_id).reasons);
  }
};

TEST_F(Trigger_States, not_configured) {
  const Explanation before = explained(7);
  EXPECT_EQ(before.state, State::not_configured);
  EXPECT_EQ(before.name, std::nullopt);
  EXPECT_THAT(texts_of(before.reasons),
              ElementsAre("not-in-configuration: No configuration is stored yet."));

  apply({a_trigger(8, on_topic("a"))});
  EXPECT_THAT(reasons(7),
              ElementsAre("not-in-configuration: The configuration has no such trigger."));
}

TEST_F(Trigger_States, not_configured_with_a_record_that_a_refresh_deletes) {
  apply({a_trigger(8, on_topic("a"))});
  foreign_program().execute("INSERT INTO trigger_record (id, name) VALUES (7, 'by hand')");

  const Explanation explanation = explained(7);

  EXPECT_EQ(explanation.state, State::not_configured);
  EXPECT_EQ(explanation.name, "by hand");
  EXPECT_THAT(texts_of(explanation.reasons),
              ElementsAre("not-in-configuration: The configuration has no such trigger.",
                          "not-refreshed: A refresh would delete its record."));
}

TEST_F(Trigger_States, active_and_told_of_its_places) {
  apply({a_trigger(7, on_topic("a") + "," + on_topic("b") + "," + on_object("vehicle") + "," +
                          on_subscriptions)});

  const Explanation explanation = explained(7);

  EXPECT_EQ(explanation.state, State::active);
  EXPECT_EQ(explanation.name, "trigger 7");
  EXPECT_THAT(explanation.reasons, IsEmpty());
  ASSERT_EQ(explanation.cameras.size(), 2);
  const Explanation::Camera& gate = explanation.cameras[0];
  EXPECT_EQ(gate.id, 10);
  EXPECT_EQ(gate.name, "gate");
  EXPECT_TRUE(gate.selected);
  EXPECT_TRUE(gate.detected);
  EXPECT_THAT(gate.objects, ElementsAre("car", "truck"));
  EXPECT_THAT(gate.reasons, IsEmpty());
  const Explanation::Camera& dock = explanation.cameras[1];
  ASSERT_EQ(dock.topics.size(), 2);
  EXPECT_TRUE(dock.topics[0].subscribed);
  EXPECT_FALSE(dock.topics[1].subscribed);
  EXPECT_THAT(texts_of(dock.topics[1].reasons),
              ElementsAre("topic-not-supported: Camera 11 does not support \"b\"."));
  ASSERT_EQ(explanation.subscriptions.size(), 1);
  EXPECT_EQ(explanation.subscriptions[0].name, "door");
  EXPECT_TRUE(explanation.subscriptions[0].joined);
}

TEST_F(Trigger_States, inactive_for_each_schedule_wherever_it_stands) {
  apply({a_trigger(7, on_topic("a"), "", R"(, "scheduleIds": [1, 2, 5])")},
        R"({"triggerMapping": [{"scheduleIds": [4, 5], "triggerIds": [7]},
                               {"scheduleIds": [6], "triggerIds": [8]}]})");

  const Explanation explanation = explained(7);

  EXPECT_EQ(explanation.state, State::inactive);
  EXPECT_THAT(texts_of(explanation.reasons),
              ElementsAre("schedule-not-usable: Schedule 2 (\"\") is not usable; the trigger's own "
                          "list names it.",
                          "schedule-not-found: Schedule 4 does not exist; an association of the "
                          "mapping with the trigger names it.",
                          "schedule-not-found: Schedule 5 does not exist; the trigger's own list "
                          "and an association of the mapping name it."));
}

TEST_F(Trigger_States, inactive_on_this_server) {
  apply({a_trigger(7, on_topic("a"), R"("server": {"site": ["north", null]})")});
  EXPECT_EQ(explained(7).state, State::inactive);
  EXPECT_THAT(reasons(7), ElementsAre("server-filter: The server filter asks for site or "
                                      "site=north; server 1 (\"one\") has no tags."));
}

TEST_F(Trigger_States, dropped_for_want_of_a_source) {
  apply({a_trigger(7, R"({"type": "external"}, {"type": "radar"}, {"type": "radar"})")});

  EXPECT_EQ(explained(7).state, State::dropped);
  EXPECT_THAT(reasons(7),
              ElementsAre("no-usable-source: None of its sources can be subscribed to, so the "
                          "trigger is left out: external, radar."));
}

TEST_F(Trigger_States, behind_the_rules_until_a_refresh) {
  apply({a_trigger(7, on_topic("a")), a_trigger(8, on_topic("a"))});
  foreign_program().execute("DELETE FROM trigger_record WHERE id = 7");
  foreign_program().execute("UPDATE trigger_record SET name = 'by hand' WHERE id = 8");

  EXPECT_EQ(explained(7).state, State::inactive);
  EXPECT_THAT(reasons(7),
              ElementsAre("not-refreshed: A refresh would make it active: nothing is stored of it, "
                          "though the rules ask for it. The last pass failed for it, or the site "
                          "has changed since."));
  EXPECT_THAT(reasons(8),
              ElementsAre("not-refreshed: A refresh would change what its record says."));
}

TEST_F(Trigger_States, listening_elsewhere_after_a_refresh) {
  apply({a_trigger(7, on_topic("a")), a_trigger(8, on_topic("a") + "," + on_object("car"))});
  foreign_program().execute(
      "DELETE FROM subscription_trigger WHERE record_id = 1 AND linked_id = 7");
  EXPECT_THAT(reasons(7), ElementsAre("not-refreshed: A refresh would change where it listens, in "
                                      "1 place."));

  site.given_camera(12).with_topic("a").detecting_objects();
  site.store_in(database());
  EXPECT_THAT(reasons(7), ElementsAre("not-refreshed: A refresh would change where it listens, in "
                                      "2 places."));
  EXPECT_THAT(reasons(8), ElementsAre("not-refreshed: A refresh would change where it listens, in "
                                      "2 places."));
  const Explanation::Camera camera = explained(8, 12).cameras.at(0);
  EXPECT_THAT(texts_of(camera.reasons),
              ElementsAre("not-refreshed: A refresh would detect for it here."));
  EXPECT_THAT(texts_of(camera.topics.at(0).reasons),
              ElementsAre("not-refreshed: A refresh would subscribe it."));
}

TEST_F(Trigger_States, about_to_leave_its_places) {
  apply({a_trigger(7, on_topic("a") + "," + on_object("car") + "," + on_subscriptions,
                   std::string(at_dock) + R"(, "eventSubscription": {"door": "main"})")});
  site.given_camera(11).without_tag("area");
  site.given_generic_subscription(3).without_tag("door");
  site.store_in(database());

  const Explanation explanation = explained(7);

  const Explanation::Camera& dock = explanation.cameras.at(1);
  EXPECT_FALSE(dock.selected);
  EXPECT_TRUE(dock.detected);
  EXPECT_THAT(texts_of(dock.reasons),
              ElementsAre("camera-filter: The camera filter asks for area=dock; camera 11 has no "
                          "tags.",
                          "not-refreshed: A refresh would end the detection."));
  EXPECT_THAT(texts_of(dock.topics.at(0).reasons),
              ElementsAre("not-refreshed: A refresh would end the subscription: The camera filter "
                          "asks for area=dock; camera 11 has no tags."));
  EXPECT_THAT(texts_of(explanation.subscriptions.at(0).reasons),
              ElementsAre("not-refreshed: A refresh would end this: The filter for subscriptions "
                          "asks for door=main; subscription 3 has no tags."));
}

TEST_F(Trigger_States, at_a_camera_that_is_gone) {
  apply({a_trigger(7, on_topic("a") + "," + on_object("car"))});
  foreign_program().execute("DELETE FROM camera WHERE id = 11");

  const Explanation explanation = explained(7);

  ASSERT_EQ(explanation.cameras.size(), 2);
  const Explanation::Camera& gone = explanation.cameras[1];
  EXPECT_EQ(gone.name, std::nullopt);
  EXPECT_FALSE(gone.selected);
  EXPECT_EQ(codes_of(gone.reasons).at(0), "camera-not-found");
}

TEST_F(Trigger_States, explained_for_one_camera) {
  apply({a_trigger(7, on_topic("a"))});

  EXPECT_EQ(explained(7, 11).cameras.size(), 1);
  EXPECT_EQ(explained(7, 11).cameras.at(0).id, 11);
  EXPECT_THAT(explained(7, 12).cameras, IsEmpty());
}

TEST_F(Trigger_States, silent_for_what_its_cameras_lack_each_reason_once) {
  site.given_camera(12).with_tag("area", "dock").with_topic("c");
  site.given_camera(13).with_tag("area", "dock").with_topic("c").detecting_objects();
  site.store_in(database());
  apply({a_trigger(7, on_topic("b") + "," + on_motion, at_dock)});

  EXPECT_THAT(reasons(7),
              ElementsAre("no-motion-detection: Camera 11 takes no part in motion detection. (3 "
                          "like this.)",
                          "topic-not-supported: Camera 11 does not support \"b\". (3 like this.)"));
}

TEST_F(Trigger_States, silent_for_a_filter_that_nothing_matches) {
  apply({a_trigger(7, on_topic("a"), R"("camera": {"area": "roof"})"),
         a_trigger(8, on_subscriptions, R"("eventSubscription": {"door": "back"})"),
         a_trigger(9, R"({"type": "audio-detection"})")});

  EXPECT_THAT(reasons(7), ElementsAre("camera-filter: No camera has what the camera filter asks "
                                      "for: area=roof."));
  EXPECT_THAT(reasons(8),
              ElementsAre("subscription-filter: No generic subscription has what the filter for "
                          "subscriptions asks for: door=back."));
  EXPECT_THAT(reasons(9),
              ElementsAre("no-usable-source: Its sources need no subscription and no detection: "
                          "audio-detection."));
}

TEST_F(Trigger_States, not_silent_where_one_source_hears) {
  apply({a_trigger(7, on_topic("b") + "," + on_object("car"), at_dock),
         a_trigger(8, on_topic("x") + "," + on_subscriptions)});

  EXPECT_THAT(reasons(7), IsEmpty());
  EXPECT_THAT(reasons(8), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
