// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

#include "system/passes/whole_pass_test.h"

namespace kuv::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const std::string motion = "tns1:RuleEngine/CellMotionDetector/Motion";
const std::string digital_input = "tns1:Device/Trigger/DigitalInput";

class Passes_Over_A_Site : public Whole_Pass_Test {};

INSTANTIATE_TEST_SUITE_P(Engines, Passes_Over_A_Site, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Passes_Over_A_Site, subscribe_to_the_topics_that_cameras_can_send) {
  site.given_camera(10).with_topic(motion).with_topic(digital_input);
  site.given_camera(11).with_topic(motion);
  site.given_camera(12);
  site.given_camera(13).with_topic("tns1:RuleEngine/CellMotionDetector");

  const Outcome outcome = update_config(R"({"triggers": [
      {"id": 7, "name": "motion", "tags": {}, "sources": [
        {"type": "onvif-metadata", "onvifTopic": "tns1:RuleEngine/CellMotionDetector/Motion"},
        {"type": "onvif-metadata", "onvifTopic": "tns1:Device/Trigger/DigitalInput"}]},
      {"id": 8, "name": "input", "tags": {}, "anyTime": true, "sources": [
        {"type": "ONVIF-Metadata", "onvifTopic": "tns1:Device/Trigger/DigitalInput"}]}]})");

  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(outcome.pending, IsEmpty());
  EXPECT_THAT(topic_subscriptions(),
              ElementsAre("camera 10 topic tns1:Device/Trigger/DigitalInput: 7 8",
                          "camera 10 topic tns1:RuleEngine/CellMotionDetector/Motion: 7",
                          "camera 11 topic tns1:RuleEngine/CellMotionDetector/Motion: 7"));
  EXPECT_THAT(lines_of(outcome.state),
              ElementsAre("7 applied", "8 applied at any time",
                          "7 camera 10 topics tns1:Device/Trigger/DigitalInput "
                          "tns1:RuleEngine/CellMotionDetector/Motion",
                          "7 camera 11 topics tns1:RuleEngine/CellMotionDetector/Motion",
                          "8 camera 10 topics tns1:Device/Trigger/DigitalInput"));
  EXPECT_THAT(stored_triggers(),
              ElementsAre("trigger 7 \"motion\" schedules [] sources ["
                          "type 0 topic \"tns1:Device/Trigger/DigitalInput\", "
                          "type 0 topic \"tns1:RuleEngine/CellMotionDetector/Motion\"]",
                          "trigger 8 \"input\" schedules [] sources ["
                          "type 0 topic \"tns1:Device/Trigger/DigitalInput\"]"));
}

TEST_P(Passes_Over_A_Site, keep_to_the_cameras_that_the_filter_selects) {
  site.given_camera(10).with_tag("site", "north").with_topic("a").detecting_objects();
  site.given_camera(11).with_tag("site", "south").with_topic("a").detecting_objects();
  site.given_camera(12).with_tag("indoor").with_topic("a").detecting_objects();
  site.given_camera(13).with_topic("a").detecting_objects();

  update_config(R"({"triggers": [
      {"id": 7, "name": "", "tags": {"camera": {"site": ["north", "west"], "indoor": null}},
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
                   {"type": "object-detection", "searchItem": {"type": "person"}}]}]})");

  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 12 topic a: 7"));
  EXPECT_THAT(detections(), ElementsAre("camera 10: 7", "camera 12: 7"));
}

TEST_P(Passes_Over_A_Site, select_nothing_by_a_filter_that_no_camera_matches) {
  site.given_camera(10).with_topic("a").detecting_objects();
  site.given_generic_subscription(100);
  update_config(R"({"triggers": [{"id": 7, "name": "", "tags": {},
      "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"},
                  {"type": "object-detection", "searchItem": {"type": "person"}}]}]})");
  ASSERT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7"));

  const Outcome outcome = update_config(
      R"({"triggers": [{"id": 7, "name": "", "tags": {"camera": {"site": "nowhere"}},
      "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"},
                  {"type": "object-detection", "searchItem": {"type": "person"}}]}]})");

  EXPECT_THAT(topic_subscriptions(), IsEmpty());
  EXPECT_THAT(detections(), IsEmpty());
  EXPECT_THAT(generic_subscriptions(), ElementsAre("subscription 100: 7"));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
  EXPECT_THAT(lines_of(outcome.state), ElementsAre("7 applied", "7 subscriptions 100"));
  // The generic subscription was left and joined again: no row of it changed.
  EXPECT_EQ(outcome.changes.subscription_links.added.size(), 0U);
  ASSERT_EQ(outcome.changes.subscription_links.deleted.size(), 1U);
  EXPECT_EQ(outcome.changes.subscription_links.deleted.at(0).record_id, 1U);
}

TEST_P(Passes_Over_A_Site, let_triggers_join_and_leave_generic_subscriptions_by_their_tags) {
  site.given_generic_subscription(100).with_tag("door", "main");
  site.given_generic_subscription(101).with_tag("door", "side");
  site.given_generic_subscription(102);
  const auto config = [](const std::string& tags) {
    return R"({"triggers": [{"id": 7, "name": "", "tags": )" + tags +
           R"(, "sources": [{"type": "metadata-event"}]}]})";
  };

  Outcome outcome = update_config(config(R"({"eventSubscription": {"door": "main"}})"));
  EXPECT_THAT(generic_subscriptions(),
              ElementsAre("subscription 100: 7", "subscription 101:", "subscription 102:"));
  EXPECT_THAT(lines_of(outcome.state), ElementsAre("7 applied", "7 subscriptions 100"));

  outcome = update_config(config(R"({"eventSubscription": {"door": "side"}})"));
  EXPECT_THAT(generic_subscriptions(),
              ElementsAre("subscription 100:", "subscription 101: 7", "subscription 102:"));

  outcome = update_config(config("{}"));
  EXPECT_THAT(generic_subscriptions(),
              ElementsAre("subscription 100: 7", "subscription 101: 7", "subscription 102: 7"));
  EXPECT_THAT(lines_of(outcome.state), ElementsAre("7 applied", "7 subscriptions 100 101 102"));

  outcome = update_config(R"({"triggers": [{"id": 7, "name": "", "tags": {},
                              "sources": [{"type": "audio-detection"}]}]})");
  EXPECT_THAT(generic_subscriptions(),
              ElementsAre("subscription 100:", "subscription 101:", "subscription 102:"));
  EXPECT_THAT(lines_of(outcome.state), ElementsAre("7 applied"));
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_THAT(outcome.pending, IsEmpty());
}

TEST_P(Passes_Over_A_Site, leave_generic_subscriptions_and_join_them_again_without_a_change) {
  site.given_camera(10).with_topic("a");
  site.given_camera(11).with_topic("a");
  site.given_generic_subscription(100).with_tag("door", "main").on_camera(10);
  site.given_generic_subscription(101).on_camera(11);
  const auto source = [](const std::string& filter) {
    return R"(, "tags": {"eventSubscription": )" + filter + R"(}, "sources": [
        {"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"}]})";
  };
  const std::string config = R"({"triggers": [{"id": 7, "name": "")" + source("{}") +
                             R"(, {"id": 8, "name": "")" + source(R"({"door": null})") + "]}";
  const Outcome first = update_config(config);
  ASSERT_THAT(generic_subscriptions(), ElementsAre("subscription 100: 7 8", "subscription 101: 7"));
  const auto before = stored();

  const Outcome again = refresh();

  EXPECT_TRUE(again.changes.empty());
  EXPECT_THAT(again.reconciled, IsEmpty());
  EXPECT_THAT(again.pending, IsEmpty());
  EXPECT_EQ(lines_of(again.state), lines_of(first.state));
  EXPECT_EQ(stored(), before);

  const Outcome less =
      update_config(R"({"triggers": [{"id": 8, "name": "")" + source(R"({"door": "side"})") + "]}");
  EXPECT_THAT(generic_subscriptions(), ElementsAre("subscription 100:", "subscription 101:"));
  EXPECT_THAT(less.reconciled, IsEmpty());
  EXPECT_THAT(less.pending, IsEmpty());
}

TEST_P(Passes_Over_A_Site, take_triggers_off_a_topic_without_a_camera_where_cameras_are_chosen) {
  site.given_camera(10).with_tag("gate").with_topic("a");
  const auto trigger = [](const std::string& id, const std::string& tags) {
    return R"({"id": )" + id + R"(, "name": "", "tags": )" + tags +
           R"(, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]})";
  };
  update_config("{\"triggers\": [" + trigger("7", "{}") + ", " +
                trigger("8", R"({"camera": {"gate": null}})") + "]}");
  restart();
  foreign_program().execute(
      "INSERT INTO subscription (id, name, onvif_topic) VALUES (77, 'x', 'a'), (78, 'x', 'b')");
  foreign_program().execute(
      "INSERT INTO subscription_trigger VALUES (77, 7), (77, 8), (78, 7), (78, 8)");

  const Outcome outcome = refresh();

  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(generic_subscriptions(), ElementsAre("subscription 77: 7", "subscription 78:"));
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_TRUE(refresh().changes.empty());
}

TEST_P(Passes_Over_A_Site, watch_the_cameras_that_take_part_in_detection) {
  site.given_camera(10).detecting_objects();
  site.given_camera(11).detecting_motion();
  site.given_camera(12).detecting_objects().detecting_motion();
  site.given_camera(13);
  resolver->leaves = {{"vehicle", {"car", "truck"}}};

  const Outcome outcome = update_config(R"({"triggers": [
      {"id": 7, "name": "objects", "tags": {}, "sources": [
        {"type": "object-detection", "searchItem": {"type": "vehicle", "motionRequired": true}},
        {"type": "object-detection", "searchItem": {"type": "truck"}}]},
      {"id": 8, "name": "motion", "tags": {}, "sources": [{"type": "motion-detection",
        "activityDuration": {"minDurationMs": 1000, "dropoutMs": 2000}}]},
      {"id": 9, "name": "both", "tags": {}, "sources": [
        {"type": "motion-detection"},
        {"type": "object-detection", "searchItem": {"type": "person", "motionRequired": true},
         "activityDuration": {"mode": "object-track", "minDurationMs": 28800000}}]}]})");

  EXPECT_THAT(detections(), ElementsAre("camera 10: 7 9", "camera 11: 8 9", "camera 12: 7 8 9"));
  EXPECT_THAT(lines_of(outcome.state),
              ElementsAre("7 applied", "8 applied", "9 applied",
                          "7 camera 10 searches car in motion, truck",
                          "7 camera 12 searches car in motion, truck", "8 camera 11 searches ",
                          "8 camera 12 searches ", "9 camera 10 searches person in motion",
                          "9 camera 11 searches person in motion",
                          "9 camera 12 searches person in motion"));
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_THAT(stored_triggers().at(2),
              "trigger 9 \"both\" schedules [] sources ["
              "type 2 object \"person\" in motion mode 1 for 28800000000us dropout 0us, type 4]");
}

TEST_P(Passes_Over_A_Site, follow_a_camera_that_stops_taking_part) {
  site.given_camera(10).detecting_objects();
  site.given_camera(11).detecting_objects();
  const std::string config = R"({"triggers": [{"id": 7, "name": "", "tags": {},
      "sources": [{"type": "object-detection", "searchItem": {"type": "person"}}]}]})";
  update_config(config);
  ASSERT_THAT(detections(), ElementsAre("camera 10: 7", "camera 11: 7"));

  site.given_camera(11).detecting_objects(false);
  site.store_in(database());
  const Outcome outcome = refresh();

  EXPECT_THAT(detections(), ElementsAre("camera 10: 7"));
  EXPECT_THAT(lines_of(outcome.state), ElementsAre("7 applied", "7 camera 10 searches person"));
}

TEST_P(Passes_Over_A_Site, follow_a_camera_whose_tags_change) {
  site.given_camera(10).with_tag("gate").with_topic("a").detecting_motion();
  site.given_camera(11).with_topic("a").detecting_motion();
  update_config(R"({"triggers": [{"id": 7, "name": "", "tags": {"camera": {"gate": null}},
      "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "motion-detection"}]}]})");
  ASSERT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7"));

  site.given_camera(10).without_tag("gate");
  site.given_camera(11).with_tag("gate", "west");
  site.store_in(database());
  const Outcome outcome = refresh();

  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 11 topic a: 7"));
  EXPECT_THAT(detections(), ElementsAre("camera 11: 7"));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
}

TEST_P(Passes_Over_A_Site, keep_a_subscription_that_a_camera_no_longer_lists) {
  site.given_camera(10).with_topic("a");
  update_config(R"({"triggers": [{"id": 7, "name": "", "tags": {},
      "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]}]})");

  site.given_camera(10).without_topic("a");
  site.store_in(database());
  const Outcome outcome = update_config(R"({"triggers": [
      {"id": 7, "name": "", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 8, "name": "", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]}]})");

  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7 8"));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
}

TEST_P(Passes_Over_A_Site, follow_topics_that_come_and_go) {
  site.given_camera(10).with_topic("a").with_topic("b").with_topic("c");
  const auto config = [](const std::string& first, const std::string& second) {
    return R"({"triggers": [{"id": 7, "name": "", "tags": {}, "sources": [
        {"type": "onvif-metadata", "onvifTopic": ")" +
           first + R"("}, {"type": "onvif-metadata", "onvifTopic": ")" + second + R"("}]}]})";
  };
  update_config(config("a", "b"));
  ASSERT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 10 topic b: 7"));

  const Outcome outcome = update_config(config("b", "c"));

  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic b: 7", "camera 10 topic c: 7"));
  EXPECT_THAT(outcome.changes.subscriptions.added, ElementsAre(3));
  EXPECT_THAT(outcome.changes.subscriptions.deleted, ElementsAre(1));
  EXPECT_THAT(outcome.changes.triggers.updated, ElementsAre(7));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
}

TEST_P(Passes_Over_A_Site, take_a_removed_trigger_off_everything) {
  site.given_camera(10).with_topic("a").with_topic("b").detecting_objects();
  site.given_camera(11).with_topic("a").detecting_objects();
  site.given_generic_subscription(100);
  const std::string both = R"({"triggers": [
      {"id": 7, "name": "", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
        {"type": "metadata-event"}, {"type": "object-detection", "searchItem": {"type": "car"}}]},
      {"id": 8, "name": "", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
        {"type": "onvif-metadata", "onvifTopic": "b"},
        {"type": "metadata-event"}, {"type": "object-detection", "searchItem": {"type": "car"}}]}]})";
  update_config(both);

  Json::Value one = json(both);
  one["triggers"].resize(1);
  const Outcome outcome = update_config(one);

  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7"));
  EXPECT_THAT(generic_subscriptions(), ElementsAre("subscription 100: 7"));
  EXPECT_THAT(detections(), ElementsAre("camera 10: 7", "camera 11: 7"));
  // Camera 11 keeps its only subscription; who listens to it is nothing to the camera.
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
  EXPECT_THAT(outcome.pending, IsEmpty());

  EXPECT_THAT(update_config(R"({"triggers": []})").reconciled, ElementsAre(10, 11));
  EXPECT_THAT(topic_subscriptions(), IsEmpty());
  EXPECT_THAT(detections(), IsEmpty());
  EXPECT_THAT(stored_triggers(), IsEmpty());
  EXPECT_THAT(generic_subscriptions(), ElementsAre("subscription 100:"));
}

TEST_P(Passes_Over_A_Site, leave_triggers_of_other_servers_alone_and_drop_what_they_held) {
  site.given_server(server_id).tags = {{"site", {"north"}}};
  site.given_camera(10).with_topic("a").detecting_objects();
  const std::string config = R"({"triggers": [
      {"id": 7, "name": "", "tags": {"server": {"site": "north"}},
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
                   {"type": "object-detection", "searchItem": {"type": "car"}}]},
      {"id": 8, "name": "", "tags": {"server": {"site": "south"}},
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]}]})";
  EXPECT_THAT(lines_of(update_config(config).state),
              ElementsAre("7 applied", "7 camera 10 topics a", "7 camera 10 searches car"));

  site.given_server(server_id).tags = {{"site", {"south"}}};
  site.store_in(database());
  const Outcome outcome = refresh();

  EXPECT_THAT(lines_of(outcome.state), ElementsAre("8 applied", "8 camera 10 topics a"));
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 8"));
  EXPECT_THAT(detections(), IsEmpty());
  EXPECT_THAT(stored_triggers(),
              ElementsAre("trigger 8 \"\" schedules [] sources [type 0 topic \"a\"]"));
  EXPECT_THAT(outcome.changes.subscriptions.added, IsEmpty());
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
}

TEST_P(Passes_Over_A_Site, follow_schedules_and_their_mapping) {
  site.given_camera(10).with_topic("a");
  site.given_schedule(1).name = "days";
  site.given_schedule(2).name = "nights";
  site.given_schedule(3, false).name = "never";
  update_config(R"({"triggers": [
      {"id": 7, "name": "", "tags": {}, "scheduleIds": [1, 2],
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 8, "name": "", "tags": {}, "scheduleIds": [3],
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 9, "name": "", "tags": {},
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]}]})");
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7 9"));
  EXPECT_EQ(stored_triggers().at(0),
            "trigger 7 \"\" schedules [1 days, 2 nights] sources [type 0 topic \"a\"]");

  Outcome outcome = update_mapping(R"({"triggerMapping": [
      {"scheduleIds": [1], "triggerIds": [7, 9]}, {"scheduleIds": [4711], "triggerIds": [7]}]})");
  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 9"));

  outcome = update_mapping(R"({"triggerMapping": []})");
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7 9"));

  site.given_schedule(3);
  site.given_schedule(2, false);
  site.store_in(database());
  outcome = refresh();
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 8 9"));
}

TEST_P(Passes_Over_A_Site, rewrite_a_trigger_whose_flags_alone_changed) {
  site.given_camera(10).detecting_objects();
  const auto config = [](const std::string& item) {
    return R"({"triggers": [{"id": 7, "name": "", "tags": {}, "sources": [
        {"type": "object-detection", "searchItem": )" +
           item + "}]}]}";
  };
  update_config(config(R"({"type": "car"})"));

  const Outcome outcome = update_config(config(R"({"type": "car", "motionRequired": true})"));

  EXPECT_THAT(outcome.changes.triggers.updated, ElementsAre(7));
  EXPECT_THAT(lines_of(outcome.state),
              ElementsAre("7 applied", "7 camera 10 searches car in motion"));
  EXPECT_EQ(stored_triggers().at(0),
            "trigger 7 \"\" schedules [] sources [type 2 object \"car\" in motion]");
}

const std::string everything_config = R"({"properties": {"notificationMaxLatencySecs": 2,
      "notificationDigestCooldownMins": 5, "notificationNackDelayMs": 0}, "triggers": [
      {"id": 7, "name": "topics", "tags": {"camera": {"gate": null}}, "scheduleIds": [1],
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
                   {"type": "onvif-metadata", "onvifTopic": "b"}]},
      {"id": 8, "name": "generic", "tags": {"eventSubscription": {"door": "main"}}, "anyTime": true,
       "sources": [{"type": "metadata-event"}, {"type": "external"}, {"type": "smoke"}]},
      {"id": 9, "name": "detection", "tags": {}, "sources": [
        {"type": "object-detection", "searchItem": {"type": "person", "motionRequired": true}},
        {"type": "motion-detection"}, {"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 10, "name": "generic without filter", "tags": {}, "sources": [
        {"type": "metadata-event"}]},
      {"id": 11, "name": "no topics", "tags": {"camera": {"nowhere": null}}, "sources": [
        {"type": "metadata-event"}, {"type": "audio-detection"}]},
      {"id": 12, "name": "of nobody", "tags": {"server": {"site": "none"}}, "sources": [
        {"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 13, "name": "dropped", "tags": {}, "sources": [{"type": "external"}]}]})";

class Passes_Over_An_Unchanged_Site : public Whole_Pass_Test {
 protected:
  Passes_Over_An_Unchanged_Site() {
    site.given_schedule(1);
    site.given_camera(10).with_tag("gate").with_topic("a").with_topic("b").detecting_objects();
    site.given_camera(11).with_topic("a").detecting_motion();
    site.given_camera(largest_id).with_tag("gate").with_topic("b");
    site.given_generic_subscription(100).with_tag("door", "main");
    site.given_generic_subscription(first_unsigned_id);
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Passes_Over_An_Unchanged_Site,
                         testing::ValuesIn(database_engines()), name_of_engine);

TEST_P(Passes_Over_An_Unchanged_Site, change_no_row_and_reconcile_no_camera) {
  const Outcome first = update_config(everything_config);
  ASSERT_THAT(first.errors, IsEmpty());
  const auto before = stored();
  ASSERT_EQ(before.count("eta_camera_trigger"), 1U);

  for (const bool restarted : {false, false, true, false}) {
    if (restarted) {
      restart();
    }
    const Outcome again = refresh();
    EXPECT_TRUE(again.success);
    EXPECT_TRUE(again.changes.empty());
    EXPECT_THAT(again.reconciled, IsEmpty());
    EXPECT_THAT(again.pending, IsEmpty());
    EXPECT_EQ(lines_of(again.state), lines_of(first.state));
    EXPECT_EQ(stored(), before);
  }
}

TEST_P(Passes_Over_An_Unchanged_Site, tell_the_pusher_everything) {
  EXPECT_THAT(
      lines_of(update_config(everything_config).state),
      ElementsAre("7 applied", "8 applied at any time", "9 applied", "10 applied", "11 applied",
                  "7 camera 10 topics a b", "7 camera 18446744073709551615 topics b",
                  "9 camera 10 topics a", "9 camera 11 topics a", "8 subscriptions 100",
                  "10 subscriptions 100 9223372036854775808",
                  "11 subscriptions 100 9223372036854775808",
                  "9 camera 10 searches person in motion", "9 camera 11 searches person in motion",
                  "max latency 2000 ms", "digest cooldown 300000 ms", "nack delay 0 ms"));
}

TEST_P(Passes_Over_An_Unchanged_Site, mend_what_another_program_took_away) {
  update_config(everything_config);
  const auto links = topic_subscriptions();
  const auto watched = detections();
  const auto triggers = stored_triggers();
  restart();
  foreign_program().execute("DELETE FROM subscription WHERE camera_id = 10");
  foreign_program().execute("DELETE FROM subscription_trigger WHERE linked_id = 9");
  foreign_program().execute("DELETE FROM eta_camera_trigger");
  foreign_program().execute("DELETE FROM trigger_source WHERE trigger_id = 9");
  for (const std::string rows : {"trigger_record WHERE id", "trigger_source WHERE trigger_id",
                                 "trigger_schedule WHERE record_id"}) {
    foreign_program().execute("DELETE FROM " + rows + " = 7");
  }

  EXPECT_TRUE(refresh().success);

  EXPECT_EQ(topic_subscriptions(), links);
  EXPECT_EQ(detections(), watched);
  EXPECT_EQ(stored_triggers(), triggers);
  const auto mended = stored();
  EXPECT_TRUE(refresh().changes.empty());
  EXPECT_EQ(stored(), mended);
}

class Passes_That_Fail : public Whole_Pass_Test {
 protected:
  Passes_That_Fail() {
    site.given_camera(10).with_topic("a").with_topic("b").detecting_objects();
    site.given_camera(11).with_topic("a").detecting_objects();
  }

  static std::string config_with_topic(const std::string& topic) {
    return R"({"triggers": [{"id": 7, "name": "on )" + topic +
           R"(", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": ")" + topic +
           R"("}, {"type": "object-detection", "searchItem": {"type": "car"}}]}]})";
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Passes_That_Fail, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Passes_That_Fail, at_the_pusher_have_stored_their_records) {
  update_config(config_with_topic("a"));
  pusher->failing = true;

  const Outcome outcome = update_config(config_with_topic("b"));

  EXPECT_FALSE(outcome.success);
  EXPECT_THAT(outcome.errors, ElementsAre("1: Failed to update trigger config: the queue is full"));
  EXPECT_EQ(outcome.state, std::nullopt);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic b: 7"));
  EXPECT_EQ(manager().get_config(), json(config_with_topic("a")));

  pusher->failing = false;
  const Outcome back = refresh();
  EXPECT_TRUE(back.success);
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7"));
}

TEST_P(Passes_That_Fail, at_the_resolver_have_stored_their_records) {
  update_config(config_with_topic("a"));
  resolver->failing = true;

  const Outcome outcome = update_config(config_with_topic("b"));

  EXPECT_FALSE(outcome.success);
  EXPECT_THAT(outcome.errors, ElementsAre("1: Failed to update trigger config: no such type"));
  EXPECT_EQ(outcome.state, std::nullopt);
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic b: 7"));
  EXPECT_THAT(stored_triggers(),
              ElementsAre("trigger 7 \"on b\" schedules [] sources [type 0 topic \"b\", "
                          "type 2 object \"car\"]"));
}

TEST_P(Passes_That_Fail, at_a_camera_without_a_topic_have_taken_their_triggers_off_it) {
  update_config(config_with_topic("a"));
  restart();
  foreign_program().execute("INSERT INTO subscription (id, name, camera_id) VALUES (77, 'x', 11)");
  foreign_program().execute("INSERT INTO subscription_trigger VALUES (77, 7)");

  const Outcome outcome = refresh();

  EXPECT_FALSE(outcome.success);
  EXPECT_THAT(outcome.errors, ElementsAre("1: Encountered error refreshing the trigger config: "
                                          "bad optional access"));
  EXPECT_EQ(outcome.state, std::nullopt);
  EXPECT_THAT(outcome.reconciled, ElementsAre(11));
  EXPECT_THAT(topic_subscriptions(),
              ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7", "camera 11 topic none:"));
  ASSERT_EQ(outcome.changes.subscription_links.deleted.size(), 1U);
  EXPECT_EQ(outcome.changes.subscription_links.deleted.at(0).record_id, 77U);
  const Outcome again = refresh();
  EXPECT_FALSE(again.success);
  EXPECT_TRUE(again.changes.empty());
  EXPECT_THAT(again.reconciled, IsEmpty());

  foreign_program().execute("DELETE FROM subscription WHERE id = 77");
  EXPECT_TRUE(refresh().success);
}

TEST_P(Passes_That_Fail, to_reconcile_a_camera_go_on_and_leave_it_pending) {
  capture_manager->failing = {10};

  const Outcome outcome = update_config(config_with_topic("a"));

  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(outcome.reconciled, ElementsAre(11));
  EXPECT_THAT(outcome.pending, ElementsAre(10));
  EXPECT_THAT(
      log.lines(logging::severity_level::error),
      ElementsAre(Log_Line{
          logging::severity_level::error, "Trigger_Manager",
          "Failed to reconcile metadata stream for camera 10: the camera does not answer"}));
}

TEST_P(Passes_That_Fail, to_read_a_document_change_nothing) {
  update_config(config_with_topic("a"));
  const auto before = stored();
  const std::vector<std::pair<std::string, std::string>> rejected{
      {"null", "Trigger configuration must be a JSON object."},
      {"{}", "Missing \"triggers\" array."},
      {R"({"triggers": {}})", "Missing \"triggers\" array."},
      {R"({"triggers": [7]})", "\"triggers\" must be an array of JSON objects."},
      {R"({"triggers": [], "properties": []})", "\"properties\" must be a JSON object."},
  };

  for (const auto& [document, complaint] : rejected) {
    const Outcome outcome = update_config(document);
    EXPECT_FALSE(outcome.success) << document;
    EXPECT_THAT(outcome.errors, ElementsAre("0: Failed to parse trigger config: " + complaint))
        << document;
    EXPECT_EQ(outcome.state, std::nullopt);
    EXPECT_TRUE(outcome.changes.empty());
  }
  for (const std::string document : {"[]", "[{}]", "\"triggers\"", "7", "true"}) {
    const Outcome outcome = update_config(document);
    EXPECT_FALSE(outcome.success) << document;
    // The reader of the properties is first, and has no words of its own for what is no object.
    EXPECT_THAT(outcome.errors, ElementsAre(StartsWith("0: Failed to parse trigger config: ")))
        << document;
    EXPECT_EQ(outcome.state, std::nullopt);
  }
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(manager().get_config(), json(config_with_topic("a")));
  for (const std::string document : {"[]", "\"mapping\"", "7", "{\"triggerMapping\": {}}"}) {
    const Outcome outcome = update_mapping(document);
    EXPECT_EQ(outcome.exception, document[0] == '{'
                                     ? "\"triggerMapping\" array is missing or invalid."
                                     : "Trigger mapping must be a JSON object.")
        << document;
  }
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(manager().get_trigger_mapping(), json(R"({"triggerMapping": []})"));
}

TEST_P(Passes_That_Fail, for_want_of_a_server_record_change_nothing) {
  update_config(config_with_topic("a"));
  const auto before = stored();
  restart();
  foreign_program().execute("UPDATE server SET id = 5");

  const Outcome outcome = refresh();

  EXPECT_FALSE(outcome.success);
  EXPECT_THAT(outcome.errors,
              ElementsAre("1: Encountered error refreshing the trigger config: Failed to retrieve "
                          "server tags due to invalid server ID"));
  foreign_program().execute("UPDATE server SET id = 1");
  EXPECT_EQ(stored(), before);
}

TEST_P(Passes_That_Fail, on_a_fault_of_the_database_clean_nothing_up) {
  update_config(config_with_topic("a"));
  const auto before = stored();
  restart();
  foreign_program().execute("ALTER TABLE eta_camera RENAME TO elsewhere");

  const Outcome outcome = update_config(config_with_topic("b"));

  EXPECT_FALSE(outcome.success);
  EXPECT_THAT(outcome.errors,
              ElementsAre(AllOf(
                  StartsWith("1: Failed to update trigger config: database " + location() + ": "),
                  HasSubstr("eta_camera"))));
  EXPECT_EQ(outcome.state, std::nullopt);
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_THAT(outcome.changes.triggers.deleted, IsEmpty());
  foreign_program().execute("ALTER TABLE elsewhere RENAME TO eta_camera");
  if (engine().keeps_transactions_after_faults) {
    // As far as the pass came: the trigger has left topic a; nothing of it is cleaned up yet.
    EXPECT_EQ(outcome.lost, "");
    EXPECT_THAT(detections(), ElementsAre("camera 10: 7", "camera 11: 7"));
    EXPECT_THAT(topic_subscriptions(),
                ElementsAre("camera 10 topic a:", "camera 10 topic b: 7", "camera 11 topic a:"));
  } else {
    EXPECT_THAT(outcome.lost, EndsWith("; nothing that the pass wrote was kept"));
    EXPECT_EQ(stored(), before);
  }
  EXPECT_TRUE(refresh().success);
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7"));
}

// Ids and texts of every kind, through a pass and back.

class Passes_With_Odd_Values : public Whole_Pass_Test {};

INSTANTIATE_TEST_SUITE_P(Engines, Passes_With_Odd_Values, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Passes_With_Odd_Values, take_every_id) {
  site.given_schedule(0);
  site.given_schedule(largest_id);
  for (const std::uint64_t id : {std::uint64_t{0}, first_unsigned_id, largest_id}) {
    site.given_camera(id).with_topic("a").detecting_objects();
    site.given_generic_subscription(id);
  }
  const Outcome outcome = update_config(R"({"triggers": [
      {"id": 0, "name": "", "tags": {}, "scheduleIds": [0, 18446744073709551615],
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"}]},
      {"id": 9223372036854775808, "name": "", "tags": {},
       "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 18446744073709551615, "name": "", "tags": {}, "sources": [
        {"type": "metadata-event"},
        {"type": "object-detection", "searchItem": {"type": "car"}}]}]})");
  const std::vector<std::string> lines = lines_of(outcome.state);

  EXPECT_THAT(
      lines,
      ElementsAre("0 applied", "9223372036854775808 applied", "18446744073709551615 applied",
                  "0 camera 0 topics a", "0 camera 9223372036854775808 topics a",
                  "0 camera 18446744073709551615 topics a", "9223372036854775808 camera 0 topics a",
                  "9223372036854775808 camera 9223372036854775808 topics a",
                  "9223372036854775808 camera 18446744073709551615 topics a",
                  "0 subscriptions 0 9223372036854775808 18446744073709551615",
                  "18446744073709551615 subscriptions 0 9223372036854775808 18446744073709551615",
                  "18446744073709551615 camera 0 searches car",
                  "18446744073709551615 camera 9223372036854775808 searches car",
                  "18446744073709551615 camera 18446744073709551615 searches car"));
  EXPECT_THAT(outcome.reconciled, ElementsAre(0, first_unsigned_id, largest_id));
  restart();
  const Outcome again = refresh();
  EXPECT_TRUE(again.changes.empty());
  EXPECT_EQ(lines_of(again.state), lines);
}

TEST_P(Passes_With_Odd_Values, keep_texts_byte_for_byte) {
  const std::vector<std::string> texts = engine().storable({
      "a \"quoted\" 'name' \\ with a\nline break",
      std::string("zero\0inside", 11),
      std::string(1 << 20, 'x'),
      "tns1:RuleEngine/CellMotionDetector/Motion//.",
      "a.b.c d/e",
      "tns1:IVA/EnteringField/Eindringen in Feld gr\xC3\xB6\xC3\x9F"
      "er 1 \xF0\x9F\x9A\xA8",
      "bell\ainside",
  });
  Json::Value config;
  std::uint64_t id = 0;
  for (const std::string& text : texts) {
    Json::Value trigger;
    trigger["id"] = static_cast<Json::UInt64>(++id);
    trigger["name"] = text;
    trigger["tags"]["camera"][text] = text;
    trigger["sources"][0]["type"] = "onvif-metadata";
    trigger["sources"][0]["onvifTopic"] = text;
    trigger["sources"][1]["type"] = "object-detection";
    trigger["sources"][1]["searchItem"]["type"] = text;
    config["triggers"].append(trigger);
    site.given_camera(id).named(text).with_tag(text, text).with_topic(text).detecting_objects();
    site.given_camera(100).with_topic(text).with_tag(text, "another");
  }

  const auto expect_all = [&](const Outcome& outcome) {
    EXPECT_THAT(outcome.errors, IsEmpty());
    ASSERT_TRUE(outcome.state);
    EXPECT_EQ(outcome.state->onvif_topics_by_trigger.size(), texts.size());
    std::uint64_t expected_id = 0;
    for (const std::string& text : texts) {
      ++expected_id;
      const auto& topics = outcome.state->onvif_topics_by_trigger.at(expected_id);
      ASSERT_EQ(topics.size(), 1U);
      EXPECT_TRUE(topics.begin()->first == expected_id);
      EXPECT_TRUE(topics.begin()->second == std::set<std::string>{text});
      const auto& items = outcome.state->search_items_by_trigger.at(expected_id).at(expected_id);
      ASSERT_EQ(items.size(), 1U);
      EXPECT_TRUE(items.begin()->object_type == text);
    }
  };
  expect_all(update_config(config));
  restart();
  const Outcome again = refresh();
  expect_all(again);
  EXPECT_TRUE(again.changes.empty());
  std::size_t place = 0;
  for (const auto& record : read_triggers(database())) {
    EXPECT_TRUE(record->name == texts.at(place++));
  }
  EXPECT_EQ(place, texts.size());
}

}  // namespace
}  // namespace kuv::test
