// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

class Subscription_Repository_Contract : public Repository_Contract_Test {
 protected:
  using Query = Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

  Ids triggers_of(std::uint64_t id) { return subscription_of_id(id)->trigger_ids(); }

  /// The ids of the subscriptions that hold a trigger.
  Ids holding(std::uint64_t trigger_id) {
    Query query;
    query.trigger = a_trigger(trigger_id);
    return matching(query);
  }

  Ids matching(const Query& query) {
    return ids_of(subscriptions().Get_Matching_Subscriptions(query));
  }

  Ids stale(const std::set<std::uint64_t>& live_trigger_ids) {
    return ids_of(subscriptions().get_stale(live_trigger_ids));
  }
};

TEST_P(Subscription_Repository_Contract, gives_a_new_subscription_an_id_and_keeps_all_of_it) {
  site.given_camera(largest_id);
  given_trigger(largest_id);
  given_trigger(0);

  const auto added =
      given_topic_subscription(largest_id, "tns1:Device/Trigger/DigitalInput", {largest_id, 0});

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_subscriptions(),
              texts_in_order({topic_subscription(
                  added->id, largest_id, "tns1:Device/Trigger/DigitalInput", {0, largest_id})}));
  });
}

TEST_P(Subscription_Repository_Contract, keeps_topics_byte_for_byte) {
  site.given_camera(10);
  given_trigger(7);
  const std::vector<std::string> topics = storable({
      "tns1:RuleEngine/CellMotionDetector/Motion//.",
      "a.b.c",
      "with 'quotes' \"and\" \\ line\nbreaks",
      "tns1:IVA/EnteringField/Eindringen in Feld gr\xC3\xB6\xC3\x9F"
      "er 1",
      std::string("zero\0inside", 11),
      std::string("zero\0inside too", 15),
      std::string("bell\a"),
      "",
      std::string(1 << 20, 't'),
  });
  std::map<std::uint64_t, std::string> topics_by_id;
  for (const std::string& topic : topics) {
    topics_by_id[given_topic_subscription(10, topic, {7})->id] = topic;
  }
  EXPECT_EQ(topics_by_id.size(), topics.size());

  now_and_after_reopening([&, this] {
    const auto found = subscriptions().get_stale({});
    ASSERT_EQ(found.size(), topics.size());
    for (const auto& record : found) {
      EXPECT_EQ(record->onvif_topic, topics_by_id.at(record->id));
      EXPECT_EQ(record->name, topics_by_id.at(record->id));
    }
    for (const std::string& topic : topics) {
      EXPECT_THAT(cameras().get_cameras_needing_subscription(topic, {}), testing::IsEmpty());
    }
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("zero", {})),
                testing::ElementsAre(10));
  });
}

TEST_P(Subscription_Repository_Contract, takes_one_subscription_for_a_camera_and_topic) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  const std::uint64_t first = given_topic_subscription(10, "a", {7})->id;

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(10, "a", {8})));
  const std::uint64_t second = given_topic_subscription(10, "b", {8})->id;
  const std::uint64_t third = given_topic_subscription(11, "a", {8})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_subscriptions(), texts_in_order({topic_subscription(first, 10, "a", {7}),
                                                   topic_subscription(second, 10, "b", {8}),
                                                   topic_subscription(third, 11, "a", {8})}));
    EXPECT_EQ(holding(8), in_order({second, third}));
  });
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_of_a_camera_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(11, "a", {7})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract,
       refuses_a_subscription_without_a_camera_or_without_a_topic) {
  site.given_camera(10);
  given_trigger(7);
  const auto of_no_camera = a_topic_subscription(10, "a", {7});
  of_no_camera->camera.reset();
  const auto of_no_topic = a_topic_subscription(10, "a", {7});
  of_no_topic->onvif_topic.reset();
  const auto of_neither = a_topic_subscription(10, "a", {7});
  of_neither->camera.reset();
  of_neither->onvif_topic.reset();

  EXPECT_FALSE(subscriptions().add(of_no_camera));
  EXPECT_FALSE(subscriptions().add(of_no_topic));
  EXPECT_FALSE(subscriptions().add(of_neither));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
  EXPECT_TRUE(subscriptions().add(a_topic_subscription(10, "", {7})));  // that is a topic too
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_with_a_trigger_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(10, "a", {7, 8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::IsEmpty());
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", {})),
                testing::ElementsAre(10));
  });
  EXPECT_TRUE(subscriptions().add(a_topic_subscription(10, "a", {7})));
}

TEST_P(Subscription_Repository_Contract, stores_triggers_that_join_and_leave) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  const auto joining = given_trigger(largest_id);
  const auto added = given_topic_subscription(10, "a", {7, 8});

  const auto changed = subscription_of_id(added->id);
  EXPECT_TRUE(changed->remove_trigger(leaving));
  EXPECT_TRUE(changed->add_trigger(joining));
  EXPECT_TRUE(subscriptions().update(changed));

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(added->id), testing::ElementsAre(8, largest_id));
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::ElementsAre(added->id));
    EXPECT_THAT(holding(largest_id), testing::ElementsAre(added->id));
  });
}

TEST_P(Subscription_Repository_Contract, stores_the_same_record_again_and_again) {
  site.given_camera(10);
  const auto first = given_trigger(7);
  const auto second = given_trigger(8);
  const auto record = given_topic_subscription(10, "a", {});

  for (int round = 0; round < 3; ++round) {
    record->add_trigger(first);
    EXPECT_TRUE(subscriptions().update(record));
    record->add_trigger(second);
    record->remove_trigger(first);
    EXPECT_TRUE(subscriptions().update(record));
    EXPECT_TRUE(subscriptions().update(record));
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::ElementsAre(record->id));
    record->remove_trigger(second);
    EXPECT_TRUE(subscriptions().update(record));
  }

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(record->id), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, stores_an_unchanged_record_without_a_change) {
  site.given_camera(10);
  given_trigger(7);
  const std::uint64_t id = given_topic_subscription(10, "a", {7})->id;

  EXPECT_TRUE(subscriptions().update(subscription_of_id(id)));

  now_and_after_reopening([&, this] { EXPECT_THAT(triggers_of(id), testing::ElementsAre(7)); });
}

TEST_P(Subscription_Repository_Contract, takes_links_from_two_copies_of_one_record) {
  site.given_camera(10);
  const auto first = given_trigger(7);
  const auto second = given_trigger(8);
  const auto one = given_topic_subscription(10, "a", {7});
  const auto other = std::make_shared<metadata_event_subscription>(*one);

  one->add_trigger(second);
  EXPECT_TRUE(subscriptions().update(one));
  other->add_trigger(second);
  other->remove_trigger(first);
  EXPECT_TRUE(subscriptions().update(other));

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(one->id), testing::ElementsAre(8));
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract,
       takes_a_link_from_a_copy_that_another_has_not_handed_over) {
  site.given_camera(10);
  given_trigger(7);
  const auto joining = given_trigger(8);
  const auto one = given_topic_subscription(10, "a", {7});
  const auto other = std::make_shared<metadata_event_subscription>(*one);
  one->add_trigger(joining);

  other->add_trigger(joining);
  EXPECT_TRUE(subscriptions().update(other));

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(one->id), testing::ElementsAre(7, 8));
    EXPECT_THAT(holding(8), testing::ElementsAre(one->id));
  });
}

TEST_P(Subscription_Repository_Contract, keeps_for_later_what_was_not_handed_over_with_a_copy) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto joining = given_trigger(8);
  const auto one = given_topic_subscription(10, "a", {7});
  const auto other = std::make_shared<metadata_event_subscription>(*one);
  one->remove_trigger(leaving);
  other->add_trigger(joining);
  EXPECT_TRUE(subscriptions().update(other));
  EXPECT_THAT(holding(7), testing::ElementsAre(one->id));

  EXPECT_TRUE(subscriptions().update(one));

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(one->id), testing::ElementsAre(8));
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, refuses_to_update_a_subscription_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto unknown = a_topic_subscription(10, "a", {7});
  unknown->id = 5;

  EXPECT_FALSE(subscriptions().update(unknown));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, answers_the_stored_links_after_a_refused_update) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto staying = given_trigger(8);
  const std::uint64_t id = given_topic_subscription(10, "a", {7, 8})->id;

  const auto changed = subscription_of_id(id);
  changed->remove_trigger(leaving);
  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(subscriptions().update(changed));

  now_and_after_reopening([&, this] {
    EXPECT_THAT(triggers_of(id), testing::ElementsAre(7, 8));
    EXPECT_THAT(holding(7), testing::ElementsAre(id));
    EXPECT_THAT(holding(8), testing::ElementsAre(id));
    EXPECT_THAT(holding(9), testing::IsEmpty());
  });
  const auto again = subscription_of_id(id);
  again->remove_trigger(staying);
  EXPECT_TRUE(subscriptions().update(again));
  now_and_after_reopening([&, this] { EXPECT_THAT(triggers_of(id), testing::ElementsAre(7)); });
}

TEST_P(Subscription_Repository_Contract, survives_a_refused_update_after_a_deletion) {
  site.given_camera(10);
  const auto dead = given_trigger(7);
  given_trigger(8);
  const std::uint64_t id = given_topic_subscription(10, "a", {7, 8})->id;
  const auto changed = subscription_of_id(id);
  changed->remove_trigger(dead);
  triggers().delete_all_except({8});

  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(subscriptions().update(changed));

  now_and_after_reopening([&, this] { EXPECT_THAT(triggers_of(id), testing::ElementsAre(8)); });
  look_behind([&](const Stored_Rows& rows) {
    EXPECT_THAT(rows.subscription_links, testing::ElementsAre(testing::Pair(id, 8)));
  });
}

TEST_P(Subscription_Repository_Contract, lets_triggers_join_a_generic_subscription) {
  site.given_category(4, "access control");
  site.given_camera(10);
  site.given_camera(largest_id);
  site.given_generic_subscription(first_unsigned_id)
      .named("door forced")
      .with_tag("door", "main")
      .with_tag("indoor")
      .in_category(4)
      .on_camera(10)
      .on_camera(largest_id);
  const auto joining = given_trigger(7);

  const auto generic = subscription_of_id(first_unsigned_id);
  generic->add_trigger(joining);
  EXPECT_TRUE(subscriptions().update(generic));

  now_and_after_reopening([this] {
    const auto found = subscription_of_id(first_unsigned_id);
    EXPECT_EQ(found->name, "door forced");
    EXPECT_FALSE(found->onvif_topic);
    EXPECT_FALSE(found->camera);
    EXPECT_EQ(text_of_tags(found->tags), "[door=main indoor]");
    EXPECT_THAT(found->trigger_ids(), testing::ElementsAre(7));
    EXPECT_THAT(text_of_link(found->category), testing::AnyOf("4", "not loaded"));
    ASSERT_EQ(found->camera_links.size(), 2U);
    EXPECT_THAT(text_of_link(found->camera_links[0]), testing::AnyOf("10", "not loaded"));
    EXPECT_THAT(text_of_link(found->camera_links[1]),
                testing::AnyOf(std::to_string(largest_id), "not loaded"));
    EXPECT_THAT(holding(7), testing::ElementsAre(first_unsigned_id));
  });
}

/// Subscriptions with a camera and no topic, or the other way round, as another program may leave
/// them: they are of no kind.
class Subscriptions_Of_Half_A_Kind : public Subscription_Repository_Contract {
 protected:
  static constexpr std::uint64_t without_topic = 77;
  static constexpr std::uint64_t without_camera = 78;

  /// False where the implementation has no way to store them.
  bool plant_both() {
    return reopen() && site_under_test().plant({without_topic, "no topic", 10, std::nullopt}) &&
           site_under_test().plant({without_camera, "no camera", std::nullopt, "a"});
  }
};

TEST_P(Subscriptions_Of_Half_A_Kind, are_left_to_whoever_looks_at_them) {
  site.given_camera(10);
  const auto joining = given_trigger(7);
  const std::uint64_t whole = given_topic_subscription(10, "a", {7})->id;
  if (!plant_both()) {
    GTEST_SKIP() << "nothing stores them";
  }
  for (const std::uint64_t id : {without_topic, without_camera}) {
    const auto record = subscription_of_id(id);
    record->add_trigger(joining);
    ASSERT_TRUE(subscriptions().update(record));
  }

  const Ids all = in_order({whole, without_topic, without_camera});
  EXPECT_EQ(stale({}), all);
  EXPECT_THAT(stale({8}), testing::ElementsAre(whole));
  triggers().delete_all();
  EXPECT_EQ(stale({}), all);
  EXPECT_THAT(stale({8}), testing::ElementsAre(whole));
  subscriptions().delete_stale();

  now_and_after_reopening(
      [this] { EXPECT_THAT(stale({}), testing::ElementsAre(without_topic, without_camera)); });
}

TEST_P(Subscription_Repository_Contract, gives_ids_that_are_not_taken_by_the_site) {
  const std::set<std::uint64_t> generic_ids{1, 2, 4, largest_id};
  site.given_camera(10);
  for (const std::uint64_t id : generic_ids) {
    site.given_generic_subscription(id);
  }
  given_trigger(7);

  std::set<std::uint64_t> ids = generic_ids;
  for (const std::string topic : {"a", "b", "c"}) {
    EXPECT_TRUE(ids.insert(given_topic_subscription(10, topic, {7})->id).second) << topic;
  }

  now_and_after_reopening([&, this] { EXPECT_EQ(stale({}), in_order(ids)); });
  EXPECT_TRUE(ids.insert(given_topic_subscription(10, "d", {7})->id).second);
  EXPECT_EQ(stale({}), in_order(ids));
}

TEST_P(Subscription_Repository_Contract, calls_topic_subscriptions_without_live_triggers_stale) {
  site.given_camera(10);
  site.given_generic_subscription(100);
  given_trigger(7);
  given_trigger(8);
  given_trigger(9);
  const std::uint64_t a = given_topic_subscription(10, "a", {7})->id;
  const std::uint64_t b = given_topic_subscription(10, "b", {7, 8})->id;
  const std::uint64_t c = given_topic_subscription(10, "c", {})->id;
  const std::uint64_t d = given_topic_subscription(10, "d", {9})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(stale({7}), in_order({c, d}));
    EXPECT_EQ(stale({8, 9}), in_order({a, c}));
    EXPECT_EQ(stale({5}), in_order({a, b, c, d}));
    EXPECT_EQ(stale({}), in_order({a, b, c, d, 100}));
  });
}

TEST_P(Subscription_Repository_Contract, calls_stale_what_was_so_when_it_was_handed_over_last) {
  site.given_camera(10);
  const auto joining = given_trigger(7);
  const auto leaving = given_trigger(8);
  const std::uint64_t empty = given_topic_subscription(10, "a", {})->id;
  const std::uint64_t served = given_topic_subscription(10, "b", {8})->id;
  const auto gaining = subscription_of_id(empty);
  gaining->add_trigger(joining);
  const auto losing = subscription_of_id(served);
  losing->remove_trigger(leaving);

  EXPECT_THAT(stale({7, 8}), testing::ElementsAre(empty));
  subscriptions().delete_stale();

  if (!reopen()) {
    GTEST_SKIP() << "only what is stored tells";
  }
  EXPECT_THAT(stale({}), testing::ElementsAre(served));
}

TEST_P(Subscription_Repository_Contract, deletes_exactly_what_it_called_stale) {
  site.given_camera(10);
  site.given_camera(11);
  site.given_generic_subscription(100);
  for (const std::uint64_t id : {6, 7, 8}) {
    given_trigger(id);
  }
  const std::uint64_t dead = given_topic_subscription(10, "a", {6})->id;
  const std::uint64_t kept = given_topic_subscription(10, "b", {6, 7})->id;
  const std::uint64_t other = given_topic_subscription(11, "a", {8})->id;
  const std::uint64_t empty = given_topic_subscription(11, "b", {})->id;
  const Ids called = in_order({dead, other, empty});
  EXPECT_EQ(stale({7}), called);

  triggers().delete_all_except({7});
  EXPECT_EQ(stale({7}), called);
  EXPECT_EQ(stale({}), in_order({dead, kept, other, empty, 100}));
  subscriptions().delete_stale();

  now_and_after_reopening([&, this] {
    EXPECT_EQ(stale({}), in_order({kept, 100}));
    EXPECT_EQ(stale({7}), Ids());
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", {})),
                testing::ElementsAre(10, 11));
  });
}

TEST_P(Subscription_Repository_Contract, knows_nobody_s_subscription_after_it_was_deleted) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  const std::uint64_t dead = given_topic_subscription(10, "a", {7})->id;
  const std::uint64_t kept = given_topic_subscription(10, "b", {7, 8})->id;
  for (const std::uint64_t id : {dead, kept}) {
    const auto record = subscription_of_id(id);
    record->remove_trigger(leaving);
    ASSERT_TRUE(subscriptions().update(record));
  }

  subscriptions().delete_stale();

  now_and_after_reopening([&, this] {
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::ElementsAre(kept));
  });
}

TEST_P(Subscription_Repository_Contract, refuses_to_update_a_subscription_that_was_deleted) {
  site.given_camera(10);
  const auto joining = given_trigger(7);
  const auto record = given_topic_subscription(10, "a", {});
  subscriptions().delete_stale();

  record->add_trigger(joining);
  EXPECT_FALSE(subscriptions().update(record));

  now_and_after_reopening([this] { EXPECT_THAT(all_subscriptions(), testing::IsEmpty()); });
}

TEST_P(Subscription_Repository_Contract, replaces_a_deleted_subscription_by_a_new_one) {
  site.given_camera(10);
  given_trigger(7);
  given_topic_subscription(10, "a", {});
  reopen();

  subscriptions().delete_stale();
  const std::uint64_t id = given_topic_subscription(10, "a", {7})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_subscriptions(), texts_in_order({topic_subscription(id, 10, "a", {7})}));
  });
}

TEST_P(Subscription_Repository_Contract, orders_by_unsigned_id) {
  for (const std::uint64_t id :
       {largest_id, std::uint64_t{0}, first_unsigned_id, std::uint64_t{3}, largest_signed_id}) {
    site.given_generic_subscription(id);
  }
  const auto joining = given_trigger(7);
  for (const auto& record : subscriptions().get_stale({})) {
    record->add_trigger(joining);
    ASSERT_TRUE(subscriptions().update(record));
  }

  now_and_after_reopening([this] {
    EXPECT_THAT(stale({}),
                testing::ElementsAre(0, 3, largest_signed_id, first_unsigned_id, largest_id));
    EXPECT_THAT(holding(7),
                testing::ElementsAre(0, 3, largest_signed_id, first_unsigned_id, largest_id));
  });
}

TEST_P(Subscription_Repository_Contract, tells_the_kinds_apart) {
  site.given_camera(10);
  site.given_generic_subscription(100);
  site.given_generic_subscription(101);
  given_trigger(7);
  const std::uint64_t bound = given_topic_subscription(10, "a", {7})->id;
  const auto generic = subscription_of_id(100);
  generic->add_trigger(a_trigger(7));
  ASSERT_TRUE(subscriptions().update(generic));

  now_and_after_reopening([&, this] {
    Query query;
    EXPECT_EQ(matching(query), in_order({bound, 100, 101}));  // nobody's trigger is asked for
    query.trigger = a_trigger(7);
    EXPECT_EQ(matching(query), in_order({bound, 100}));
    query.kind = Query::Kind::topic;
    EXPECT_EQ(matching(query), in_order({bound}));
    query.kind = Query::Kind::generic;
    EXPECT_EQ(matching(query), in_order({100}));
    query.trigger_match = Query::Trigger_Match::lacking;
    EXPECT_EQ(matching(query), in_order({101}));
    query.kind = Query::Kind::topic;
    EXPECT_EQ(matching(query), Ids());
  });
}

TEST_P(Subscription_Repository_Contract, matches_tags_by_name_and_by_value) {
  site.given_generic_subscription(1).with_tag("door", "main");
  site.given_generic_subscription(2).with_tag("door", "back").with_tag("indoor");
  site.given_generic_subscription(3).with_tag("door");
  site.given_generic_subscription(4);
  const auto found = [this](Query::Tags match, std::set<ODB_Utils::Tag_Search_Term> terms) {
    Query query;
    query.tags_match = match;
    query.tags = std::move(terms);
    return matching(query);
  };
  const auto is = Query::Tags::matching;
  const auto is_not = Query::Tags::not_matching;

  EXPECT_THAT(found(is, {{"door", "main"}}), testing::ElementsAre(1));
  EXPECT_THAT(found(is_not, {{"door", "main"}}), testing::ElementsAre(2, 3, 4));
  EXPECT_THAT(found(is, {{"door", std::nullopt}}), testing::ElementsAre(1, 2, 3));
  EXPECT_THAT(found(is_not, {{"door", std::nullopt}}), testing::ElementsAre(4));
  EXPECT_THAT(found(is, {{"door", "main"}, {"indoor", std::nullopt}}), testing::ElementsAre(1, 2));
  EXPECT_THAT(found(is_not, {{"door", "main"}, {"indoor", std::nullopt}}),
              testing::ElementsAre(3, 4));
  // No terms ask for nothing, so nothing fails to match.
  EXPECT_THAT(found(is, {}), testing::ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(found(is_not, {}), testing::IsEmpty());
}

/// Topic subscriptions, a generic one, and, where something can plant them, one with a camera and
/// without a topic (77) and one with a topic and without a camera (78). All hold trigger 7.
class Inside_And_Outside : public Subscriptions_Of_Half_A_Kind {
 protected:
  void SetUp() override {
    site.given_camera(10);
    site.given_camera(11);
    site.given_generic_subscription(100);
    const auto joining = given_trigger(7);
    given_trigger(8);
    a_on_10 = given_topic_subscription(10, "a", {7})->id;
    b_on_10 = given_topic_subscription(10, "b", {7})->id;
    a_on_11 = given_topic_subscription(11, "a", {7})->id;
    are_planted_ = plant_both();
    for (const auto& record : subscriptions().get_stale({})) {
      if (record->add_trigger(joining)) {
        ASSERT_TRUE(subscriptions().update(record));
      }
    }
  }

  /// The same for those that hold trigger 7 and for those that lack trigger 8.
  Ids found(Query::Topics_And_Cameras where, const std::vector<std::string>& topics,
            const Ids& camera_ids) {
    Query query;
    query.topics_and_cameras = where;
    query.topics = topics;
    for (const std::uint64_t id : camera_ids) {
      query.cameras.push_back(camera_of_id(id));
    }
    query.trigger = a_trigger(7);
    const Ids holding = matching(query);
    query.trigger = a_trigger(8);
    query.trigger_match = Query::Trigger_Match::lacking;
    EXPECT_EQ(matching(query), holding);
    return holding;
  }

  Ids inside(const std::vector<std::string>& topics, const Ids& camera_ids) {
    return found(Query::Topics_And_Cameras::matching, topics, camera_ids);
  }
  Ids outside(const std::vector<std::string>& topics, const Ids& camera_ids) {
    return found(Query::Topics_And_Cameras::outside, topics, camera_ids);
  }

  /// Those of them that are there.
  Ids these(std::set<std::uint64_t> ids) const {
    if (!are_planted_) {
      ids.erase(without_topic);
      ids.erase(without_camera);
    }
    return in_order(ids);
  }

  std::uint64_t a_on_10 = 0;
  std::uint64_t b_on_10 = 0;
  std::uint64_t a_on_11 = 0;

 private:
  bool are_planted_ = false;
};

TEST_P(Inside_And_Outside, are_complements_whatever_a_subscription_lacks) {
  EXPECT_EQ(inside({"a"}, {}), these({a_on_10, a_on_11, 78}));
  EXPECT_EQ(outside({"a"}, {}), these({b_on_10, 77, 100}));

  EXPECT_EQ(inside({"a"}, {10}), these({a_on_10}));
  EXPECT_EQ(outside({"a"}, {10}), these({b_on_10, a_on_11, 77, 78, 100}));

  EXPECT_EQ(inside({"a", "b"}, {10, 11}), these({a_on_10, b_on_10, a_on_11}));
  EXPECT_EQ(outside({"a", "b"}, {10, 11}), these({77, 78, 100}));

  EXPECT_EQ(inside({"c"}, {10}), Ids());
  EXPECT_EQ(outside({"c"}, {10}), these({a_on_10, b_on_10, a_on_11, 77, 78, 100}));
}

TEST_P(Inside_And_Outside, are_nothing_and_everything_where_no_topic_is_named) {
  const Ids everything = these({a_on_10, b_on_10, a_on_11, 77, 78, 100});
  EXPECT_EQ(outside({}, {}), everything);
  EXPECT_EQ(outside({}, {10}), everything);
  // Inside, a list without entries restricts nothing.
  EXPECT_EQ(inside({}, {10}), these({a_on_10, b_on_10, 77}));
}

}  // namespace kuv::test
