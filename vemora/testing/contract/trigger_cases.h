// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

class Trigger_Repository_Contract : public Repository_Contract_Test {
 protected:
  using milliseconds = std::chrono::milliseconds;

  std::string stored_trigger(std::uint64_t id) { return text_of(triggers().find_by_id(id)); }

  /// These triggers and no others, where the implementation can be looked behind.
  void expect_stored(const std::set<std::uint64_t>& ids) {
    look_behind([&ids](const Stored_Rows& rows) { EXPECT_EQ(rows.trigger_ids, ids); });
  }
};

TEST_P(Trigger_Repository_Contract, finds_no_trigger_that_was_never_added) {
  given_trigger(7);

  EXPECT_EQ(triggers().find_by_id(8), nullptr);
}

TEST_P(Trigger_Repository_Contract, finds_an_added_trigger_with_all_that_it_carries) {
  site.given_schedule(1).name = "office hours";
  site.given_schedule(2, false).name = "nights";
  const auto added = a_trigger(
      7, {onvif("tns1:VideoSource/MotionAlarm"), onvif("tns1:Device/Trigger/DigitalInput"),
          generic_events(), object_detection("person"), object_detection("car", true),
          lasting(object_detection("dog"), Activity_Duration_Mode::object_track,
                  milliseconds(28800000), milliseconds(0)),
          lasting(motion_detection(), Activity_Duration_Mode::object_presence, milliseconds(1000),
                  milliseconds(600000)),
          audio_detection()});
  added->name = "gate";
  added->schedules = {{schedule_of_id(1)}, {schedule_of_id(2)}};

  ASSERT_TRUE(triggers().add(added));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"gate\" schedules [1 office hours, 2 nights (not usable)] sources ["
              "type 0 topic \"tns1:Device/Trigger/DigitalInput\", "
              "type 0 topic \"tns1:VideoSource/MotionAlarm\", type 1, "
              "type 2 object \"car\" in motion, "
              "type 2 object \"dog\" mode 1 for 28800000000us dropout 0us, "
              "type 2 object \"person\", "
              "type 4 mode 0 for 1000000us dropout 600000000us, type 5]");
  });
}

TEST_P(Trigger_Repository_Contract, takes_every_number_for_an_id) {
  for (const std::uint64_t id :
       {std::uint64_t{0}, std::uint64_t{1}, largest_signed_id, first_unsigned_id, largest_id}) {
    given_trigger(id, {onvif(std::to_string(id))});
  }

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(0),
              "trigger 0 \"trigger 0\" schedules [] sources [type 0 topic \"0\"]");
    EXPECT_EQ(stored_trigger(largest_signed_id),
              "trigger 9223372036854775807 \"trigger 9223372036854775807\" schedules [] "
              "sources [type 0 topic \"9223372036854775807\"]");
    EXPECT_EQ(stored_trigger(first_unsigned_id),
              "trigger 9223372036854775808 \"trigger 9223372036854775808\" schedules [] "
              "sources [type 0 topic \"9223372036854775808\"]");
    EXPECT_EQ(stored_trigger(largest_id),
              "trigger 18446744073709551615 \"trigger 18446744073709551615\" schedules [] "
              "sources [type 0 topic \"18446744073709551615\"]");
  });
  expect_stored({0, 1, largest_signed_id, first_unsigned_id, largest_id});
}

TEST_P(Trigger_Repository_Contract, keeps_texts_byte_for_byte) {
  const std::string quotes = "a \"quoted\" 'name' \\ with a\nline break; -- DROP TABLE x";
  const std::string zeros("before\0after\0", 13);
  const std::string letters = "Eindringen in Feld größer 1 \xE2\x82\xAC \xF0\x9F\x9A\xA8";
  const std::string no_unicode = "\xFF\xFE\x80";
  const std::string large(1 << 20, 'x');
  const std::vector<std::string> texts =
      storable({std::string(), quotes, zeros, letters, no_unicode, large});
  std::uint64_t id = 0;
  for (const std::string& text : texts) {
    auto added = a_trigger(++id, {onvif(text + "t"), object_detection(text + "o")});
    added->name = text;
    ASSERT_TRUE(triggers().add(added));
  }

  now_and_after_reopening([&, this] {
    id = 0;
    for (const std::string& text : texts) {
      const auto found = triggers().find_by_id(++id);
      ASSERT_NE(found, nullptr);
      EXPECT_EQ(found->name, text);
      ASSERT_EQ(found->sources.size(), 2U);
      EXPECT_EQ(found->sources.begin()->onvif_topic, text + "t");
      EXPECT_EQ(found->sources.rbegin()->search_item->object_type, text + "o");
    }
  });
}

TEST_P(Trigger_Repository_Contract, refuses_a_second_trigger_of_an_id) {
  given_trigger(7, {onvif("first")});

  EXPECT_FALSE(triggers().add(a_trigger(7, {onvif("second")})));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"trigger 7\" schedules [] sources [type 0 topic \"first\"]");
  });
}

TEST_P(Trigger_Repository_Contract, goes_on_after_a_refusal) {
  given_trigger(7);

  EXPECT_FALSE(triggers().add(a_trigger(7)));
  EXPECT_TRUE(triggers().add(a_trigger(8)));

  now_and_after_reopening([this] { EXPECT_NE(triggers().find_by_id(8), nullptr); });
}

TEST_P(Trigger_Repository_Contract, refuses_a_trigger_with_a_schedule_that_is_not_stored) {
  const auto tied = a_trigger(7);
  tied->schedules.insert({std::make_shared<schedule>(schedule{5, "gone", true})});

  EXPECT_FALSE(triggers().add(tied));

  now_and_after_reopening([this] { EXPECT_EQ(stored_trigger(7), "nothing"); });
}

TEST_P(Trigger_Repository_Contract, refuses_to_tie_a_trigger_to_a_schedule_that_is_not_stored) {
  site.given_schedule(1).name = "days";
  const auto added = a_trigger(7);
  added->schedules.insert({schedule_of_id(1)});
  ASSERT_TRUE(triggers().add(added));

  const auto changed = trigger_of_id(7);
  changed->name = "renamed";
  changed->schedules.insert({std::make_shared<schedule>(schedule{5, "gone", true})});
  EXPECT_FALSE(triggers().update(changed));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7), "trigger 7 \"trigger 7\" schedules [1 days] sources []");
  });
}

TEST_P(Trigger_Repository_Contract, stores_a_changed_name_alone) {
  given_trigger(7, {onvif("topic")});

  const auto changed = trigger_of_id(7);
  changed->name = "renamed";
  EXPECT_TRUE(triggers().update(changed));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"renamed\" schedules [] sources [type 0 topic \"topic\"]");
  });
}

TEST_P(Trigger_Repository_Contract, stores_changed_schedules) {
  site.given_schedule(1).name = "days";
  site.given_schedule(2).name = "nights";
  site.given_schedule(largest_id).name = "always";
  const auto added = a_trigger(7);
  added->schedules = {{schedule_of_id(1)}, {schedule_of_id(2)}};
  ASSERT_TRUE(triggers().add(added));

  const auto changed = trigger_of_id(7);
  changed->schedules = {{schedule_of_id(2)}, {schedule_of_id(largest_id)}};
  EXPECT_TRUE(triggers().update(changed));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"trigger 7\" schedules [2 nights, 18446744073709551615 always] "
              "sources []");
  });
}

TEST_P(Trigger_Repository_Contract, stores_a_changed_motion_flag_and_a_changed_duration) {
  given_trigger(7, {object_detection("person"),
                    lasting(object_detection("car"), Activity_Duration_Mode::object_presence,
                            milliseconds(1000), milliseconds(1000))});

  const auto changed = trigger_of_id(7);
  changed->sources = {object_detection("person", true),
                      lasting(object_detection("car"), Activity_Duration_Mode::object_presence,
                              milliseconds(1000), milliseconds(2000))};
  EXPECT_TRUE(triggers().update(changed));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"trigger 7\" schedules [] sources ["
              "type 2 object \"car\" mode 0 for 1000000us dropout 2000000us, "
              "type 2 object \"person\" in motion]");
  });
}

TEST_P(Trigger_Repository_Contract, stores_more_and_fewer_sources) {
  given_trigger(7, {onvif("a"), onvif("b")});
  given_trigger(8, {onvif("a"), onvif("b"), motion_detection()});

  const auto more = trigger_of_id(7);
  more->sources.insert(onvif("aa"));
  EXPECT_TRUE(triggers().update(more));
  const auto fewer = trigger_of_id(8);
  fewer->sources = {onvif("b")};
  EXPECT_TRUE(triggers().update(fewer));

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"trigger 7\" schedules [] "
              "sources [type 0 topic \"a\", type 0 topic \"aa\", type 0 topic \"b\"]");
    EXPECT_EQ(stored_trigger(8),
              "trigger 8 \"trigger 8\" schedules [] sources [type 0 topic \"b\"]");
  });
}

TEST_P(Trigger_Repository_Contract, does_not_store_what_is_not_handed_over) {
  given_trigger(7);

  trigger_of_id(7)->name = "only in memory";

  if (!reopen()) {
    GTEST_SKIP() << "only what is stored tells";
  }
  EXPECT_EQ(stored_trigger(7), "trigger 7 \"trigger 7\" schedules [] sources []");
}

TEST_P(Trigger_Repository_Contract, refuses_to_update_a_trigger_that_is_not_stored) {
  EXPECT_FALSE(triggers().update(a_trigger(7)));

  now_and_after_reopening([this] { EXPECT_EQ(stored_trigger(7), "nothing"); });
}

TEST_P(Trigger_Repository_Contract, deletes_every_trigger_but_those_to_keep) {
  for (const std::uint64_t id :
       {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{3}, largest_id}) {
    given_trigger(id, {onvif("topic")});
  }

  triggers().delete_all_except({2, 5, largest_id});

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(1), "nothing");
    EXPECT_EQ(stored_trigger(3), "nothing");
    EXPECT_EQ(stored_trigger(5), "nothing");
    EXPECT_NE(triggers().find_by_id(2), nullptr);
    EXPECT_NE(triggers().find_by_id(largest_id), nullptr);
  });
  expect_stored({2, largest_id});
}

TEST_P(Trigger_Repository_Contract, deletes_every_trigger) {
  given_trigger(1);
  given_trigger(largest_id);

  triggers().delete_all();

  now_and_after_reopening([this] {
    EXPECT_EQ(stored_trigger(1), "nothing");
    EXPECT_EQ(stored_trigger(largest_id), "nothing");
  });
  expect_stored({});
}

TEST_P(Trigger_Repository_Contract, deletes_the_links_of_a_trigger_with_it) {
  site.given_camera(10);
  site.given_generic_subscription(100);
  site.given_schedule(1);
  const auto tied = a_trigger(7, {onvif("topic")});
  tied->schedules.insert({schedule_of_id(1)});
  ASSERT_TRUE(triggers().add(tied));
  given_trigger(8);
  const std::uint64_t bound = given_topic_subscription(10, "topic", {7, 8})->id;
  const std::uint64_t detecting = given_eta_camera(10, {7, 8})->id;
  const auto generic = subscription_of_id(100);
  generic->add_trigger(tied);
  ASSERT_TRUE(subscriptions().update(generic));

  triggers().delete_all_except({8});

  now_and_after_reopening([&, this] {
    EXPECT_EQ(
        all_subscriptions(),
        texts_in_order({topic_subscription(bound, 10, "topic", {8}),
                        {100,
                         "subscription 100 \"subscription\" camera none topic none category none "
                         "tags [] cameras [] triggers []"}}));
    EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(detecting, 10, {8})}));
  });
  look_behind([&](const Stored_Rows& rows) {
    EXPECT_THAT(rows.subscription_links, testing::ElementsAre(testing::Pair(bound, 8)));
    EXPECT_THAT(rows.detection_links, testing::ElementsAre(testing::Pair(detecting, 8)));
    EXPECT_EQ(rows.schedules_of_triggers, 0U);
    EXPECT_EQ(rows.sources_of_triggers, 0U);
  });
}

TEST_P(Trigger_Repository_Contract, deletes_the_links_of_every_trigger_with_them) {
  site.given_camera(10);
  given_trigger(7, {onvif("topic")});
  const std::uint64_t bound = given_topic_subscription(10, "topic", {7})->id;
  const std::uint64_t detecting = given_eta_camera(10, {7})->id;

  triggers().delete_all();

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_subscriptions(), texts_in_order({topic_subscription(bound, 10, "topic", {})}));
    EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(detecting, 10, {})}));
  });
  look_behind([](const Stored_Rows& rows) {
    EXPECT_THAT(rows.subscription_links, testing::IsEmpty());
    EXPECT_THAT(rows.detection_links, testing::IsEmpty());
  });
}

TEST_P(Trigger_Repository_Contract, deletes_links_that_are_held_in_memory_only_half_changed) {
  site.given_camera(10);
  site.given_camera(11);
  const auto dead = given_trigger(7);
  given_trigger(8);
  const std::uint64_t first = given_topic_subscription(10, "topic", {7, 8})->id;
  const std::uint64_t second = given_topic_subscription(11, "topic", {8})->id;
  const auto leaving = subscription_of_id(first);
  leaving->remove_trigger(dead);  // and never handed over

  triggers().delete_all_except({8});

  if (!reopen()) {
    GTEST_SKIP() << "only what is stored tells";
  }
  EXPECT_THAT(subscription_of_id(first)->trigger_ids(), testing::ElementsAre(8));
  EXPECT_THAT(subscription_of_id(second)->trigger_ids(), testing::ElementsAre(8));
  look_behind([&](const Stored_Rows& rows) {
    EXPECT_EQ(rows.subscription_links, (std::set<Stored_Rows::Link>{{first, 8}, {second, 8}}));
  });
}

TEST_P(Trigger_Repository_Contract, takes_a_deleted_trigger_back_without_its_old_links) {
  site.given_camera(10);
  given_trigger(7, {onvif("old")});
  given_trigger(8);
  const std::uint64_t id = given_topic_subscription(10, "topic", {7, 8})->id;
  triggers().delete_all_except({8});

  given_trigger(7, {onvif("new")});

  now_and_after_reopening([&, this] {
    EXPECT_EQ(stored_trigger(7),
              "trigger 7 \"trigger 7\" schedules [] sources [type 0 topic \"new\"]");
    EXPECT_THAT(subscription_of_id(id)->trigger_ids(), testing::ElementsAre(8));
  });
}

}  // namespace kuv::test
