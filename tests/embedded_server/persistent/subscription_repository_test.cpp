#include "embedded_server/persistent/database_test.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Subscription_Query =
    Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

class Subscription_Repository_Contract : public Contract_Test {
 protected:
  std::vector<std::uint64_t> triggers_of(std::uint64_t id) {
    return subscription_of_id(id)->trigger_ids();
  }

  /// The ids of the subscriptions that hold a trigger.
  std::vector<std::uint64_t> holding(std::uint64_t trigger_id) {
    Subscription_Query query;
    query.trigger = a_trigger(trigger_id);
    return ids_of(subscriptions().Get_Matching_Subscriptions(query));
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Subscription_Repository_Contract, testing::ValuesIn(contracts()),
                         name_of_contract);

TEST_P(Subscription_Repository_Contract, gives_a_new_subscription_an_id_and_keeps_all_of_it) {
  site.given_camera(largest_id);
  given_trigger(largest_id);
  given_trigger(0);

  const auto added =
      given_topic_subscription(largest_id, "tns1:Device/Trigger/DigitalInput", {largest_id, 0});

  EXPECT_EQ(added->id, 1U);
  now_and_after_reopening([this] {
    EXPECT_THAT(
        all_subscriptions(),
        ElementsAre("subscription 1 \"tns1:Device/Trigger/DigitalInput\" "
                    "camera 18446744073709551615 topic \"tns1:Device/Trigger/DigitalInput\" "
                    "category none tags [] cameras [] triggers [0 18446744073709551615]"));
  });
}

TEST_P(Subscription_Repository_Contract, keeps_topics_byte_for_byte) {
  site.given_camera(10);
  given_trigger(7);
  const std::vector<std::string> topics = engine().storable({
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
  for (const std::string& topic : topics) {
    given_topic_subscription(10, topic, {7});
  }

  now_and_after_reopening([&, this] {
    const auto found = subscriptions().get_stale({});
    ASSERT_EQ(found.size(), topics.size());
    for (std::size_t place = 0; place < topics.size(); ++place) {
      EXPECT_EQ(found[place]->onvif_topic, topics[place]);
      EXPECT_EQ(found[place]->name, topics[place]);
      EXPECT_THAT(cameras().get_cameras_needing_subscription(topics[place], {}), IsEmpty());
    }
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("zero", {})), ElementsAre(10));
  });
}

TEST_P(Subscription_Repository_Contract, takes_one_subscription_for_a_camera_and_topic) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  given_topic_subscription(10, "a", {7});

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(10, "a", {8})));
  EXPECT_TRUE(subscriptions().add(a_topic_subscription(10, "b", {8})));
  EXPECT_TRUE(subscriptions().add(a_topic_subscription(11, "a", {8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(),
                ElementsAre("subscription 1 \"a\" camera 10 topic \"a\" category none tags [] "
                            "cameras [] triggers [7]",
                            "subscription 2 \"b\" camera 10 topic \"b\" category none tags [] "
                            "cameras [] triggers [8]",
                            "subscription 3 \"a\" camera 11 topic \"a\" category none tags [] "
                            "cameras [] triggers [8]"));
    EXPECT_THAT(holding(8), ElementsAre(2, 3));
  });
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_of_a_camera_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(11, "a", {7})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
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
    EXPECT_THAT(all_subscriptions(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
  });
  EXPECT_TRUE(subscriptions().add(a_topic_subscription(10, "", {7})));  // that is a topic too
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_with_details_that_are_not_stored) {
  site.given_camera(10);
  site.given_category(5, "doors");
  given_trigger(7);
  const auto of_category = [this](std::uint64_t id) {
    auto record = a_topic_subscription(10, "a", {7});
    record->category = std::make_shared<metadata_event_category>(metadata_event_category{id, "c"});
    return record;
  };
  const auto with_further_cameras = [this](std::initializer_list<std::uint64_t> ids) {
    auto record = a_topic_subscription(10, "b", {7});
    for (const std::uint64_t id : ids) {
      record->camera_links.emplace_back(camera_of_id(id));
    }
    return record;
  };

  EXPECT_FALSE(subscriptions().add(of_category(6)));
  EXPECT_FALSE(subscriptions().add(with_further_cameras({10, 11})));
  EXPECT_FALSE(subscriptions().add(with_further_cameras({10, 10})));
  EXPECT_TRUE(subscriptions().add(of_category(5)));
  EXPECT_TRUE(subscriptions().add(with_further_cameras({10})));

  now_and_after_reopening([this] { EXPECT_EQ(all_subscriptions().size(), 2U); });
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_with_a_tag_that_cannot_be_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto with_tag = [this](const std::string& topic, const std::string& name) {
    auto record = a_topic_subscription(10, topic, {7});
    record->tags.insert({name, {}});
    return record;
  };

  EXPECT_TRUE(subscriptions().add(with_tag("a", "door")));
  EXPECT_EQ(subscriptions().add(with_tag("b", "\xff")), engine().takes_any_bytes);

  reopen();
  EXPECT_EQ(all_subscriptions().size(), engine().takes_any_bytes ? 2U : 1U);
}

TEST_P(Subscription_Repository_Contract, refuses_a_subscription_with_a_trigger_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(subscriptions().add(a_topic_subscription(10, "a", {7, 8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), IsEmpty());
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", {})), ElementsAre(10));
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

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), ElementsAre(8, largest_id));
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), ElementsAre(1));
    EXPECT_THAT(holding(largest_id), ElementsAre(1));
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
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), ElementsAre(1));
    record->remove_trigger(second);
    EXPECT_TRUE(subscriptions().update(record));
  }

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, stores_an_unchanged_record_without_a_change) {
  site.given_camera(10);
  given_trigger(7);
  given_topic_subscription(10, "a", {7});

  EXPECT_TRUE(subscriptions().update(subscription_of_id(1)));

  now_and_after_reopening([this] { EXPECT_THAT(triggers_of(1), ElementsAre(7)); });
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

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), ElementsAre(8));
    EXPECT_THAT(holding(7), IsEmpty());
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

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), ElementsAre(7, 8));
    EXPECT_THAT(holding(8), ElementsAre(1));
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
  EXPECT_THAT(holding(7), ElementsAre(1));

  EXPECT_TRUE(subscriptions().update(one));

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), ElementsAre(8));
    EXPECT_THAT(holding(7), IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, refuses_to_update_a_subscription_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto unknown = a_topic_subscription(10, "a", {7});
  unknown->id = 5;

  EXPECT_FALSE(subscriptions().update(unknown));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
  });
}

TEST_P(Subscription_Repository_Contract, answers_the_stored_links_after_a_refused_update) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto staying = given_trigger(8);
  given_topic_subscription(10, "a", {7, 8});

  const auto changed = subscription_of_id(1);
  changed->remove_trigger(leaving);
  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(subscriptions().update(changed));

  now_and_after_reopening([this] {
    EXPECT_THAT(triggers_of(1), ElementsAre(7, 8));
    EXPECT_THAT(holding(7), ElementsAre(1));
    EXPECT_THAT(holding(8), ElementsAre(1));
    EXPECT_THAT(holding(9), IsEmpty());
  });
  const auto again = subscription_of_id(1);
  again->remove_trigger(staying);
  EXPECT_TRUE(subscriptions().update(again));
  now_and_after_reopening([this] { EXPECT_THAT(triggers_of(1), ElementsAre(7)); });
}

TEST_P(Subscription_Repository_Contract, survives_a_refused_update_after_a_deletion) {
  site.given_camera(10);
  const auto dead = given_trigger(7);
  given_trigger(8);
  given_topic_subscription(10, "a", {7, 8});
  const auto changed = subscription_of_id(1);
  changed->remove_trigger(dead);
  triggers().delete_all_except({8});

  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(subscriptions().update(changed));

  now_and_after_reopening([this] { EXPECT_THAT(triggers_of(1), ElementsAre(8)); });
  reopen();
  EXPECT_EQ(foreign_program().query("SELECT linked_id FROM subscription_trigger"), (Rows{{"8"}}));
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
    EXPECT_THAT(
        all_subscriptions(),
        ElementsAre("subscription 9223372036854775808 \"door forced\" camera none topic none "
                    "category 4 tags [door=main indoor] cameras [10 18446744073709551615] "
                    "triggers [7]"));
  });
}

// With a camera and no topic, or the other way round, as another program may leave it: of no kind.
TEST_P(Subscription_Repository_Contract,
       leaves_a_subscription_of_half_a_kind_to_whoever_looks_at_it) {
  site.given_camera(10);
  given_trigger(7);
  given_topic_subscription(10, "a", {7});
  given_topic_subscription(10, "b", {7});
  given_topic_subscription(10, "c", {7});
  reopen();
  foreign_program().execute("UPDATE subscription SET onvif_topic = NULL WHERE id = 2");
  foreign_program().execute("UPDATE subscription SET camera_id = NULL WHERE id = 3");

  EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(1, 2, 3));
  EXPECT_THAT(ids_of(subscriptions().get_stale({8})), ElementsAre(1));
  triggers().delete_all();
  EXPECT_THAT(ids_of(subscriptions().get_stale({8})), ElementsAre(1));
  subscriptions().delete_stale();

  now_and_after_reopening(
      [this] { EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(2, 3)); });
}

TEST_P(Subscription_Repository_Contract, gives_ids_that_are_not_taken_by_the_site) {
  site.given_camera(10);
  site.given_generic_subscription(1);
  site.given_generic_subscription(2);
  site.given_generic_subscription(4);
  site.given_generic_subscription(largest_id);
  given_trigger(7);

  EXPECT_EQ(given_topic_subscription(10, "a", {7})->id, 3U);
  EXPECT_EQ(given_topic_subscription(10, "b", {7})->id, 5U);

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(1, 2, 3, 4, 5, largest_id));
  });
  EXPECT_EQ(given_topic_subscription(10, "c", {7})->id, 6U);
}

TEST_P(Subscription_Repository_Contract, gives_no_id_twice) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto first = given_topic_subscription(10, "a", {7});
  const auto second = given_topic_subscription(10, "b", {7});
  reopen();
  for (const std::uint64_t id : {first->id, second->id}) {
    const auto record = subscription_of_id(id);
    record->remove_trigger(leaving);
    ASSERT_TRUE(subscriptions().update(record));
  }
  subscriptions().delete_stale();

  const auto third = given_topic_subscription(10, "a", {7});
  EXPECT_EQ(third->id, 3U);

  reopen();
  EXPECT_EQ(given_topic_subscription(10, "b", {7})->id, 4U);
}

TEST_P(Subscription_Repository_Contract, gives_ids_also_from_the_site_s_largest_on) {
  site.given_camera(10);
  site.given_generic_subscription(largest_id);
  given_trigger(7);
  reopen();
  // As after a long life.
  foreign_program().execute("DELETE FROM id_allocation");
  foreign_program().execute("INSERT INTO id_allocation VALUES ('subscription', -2)");

  EXPECT_EQ(given_topic_subscription(10, "a", {7})->id, largest_id - 1);
  EXPECT_EQ(given_topic_subscription(10, "b", {7})->id, 0U);
  EXPECT_EQ(given_topic_subscription(10, "c", {7})->id, 1U);

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(subscriptions().get_stale({})),
                ElementsAre(0, 1, largest_id - 1, largest_id));
  });
}

TEST_P(Subscription_Repository_Contract, calls_topic_subscriptions_without_live_triggers_stale) {
  site.given_camera(10);
  site.given_generic_subscription(100);
  given_trigger(7);
  given_trigger(8);
  given_trigger(9);
  given_topic_subscription(10, "a", {7});
  given_topic_subscription(10, "b", {7, 8});
  given_topic_subscription(10, "c", {});
  given_topic_subscription(10, "d", {9});

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(subscriptions().get_stale({7})), ElementsAre(3, 4));
    EXPECT_THAT(ids_of(subscriptions().get_stale({8, 9})), ElementsAre(1, 3));
    EXPECT_THAT(ids_of(subscriptions().get_stale({5})), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(1, 2, 3, 4, 100));
  });
}

TEST_P(Subscription_Repository_Contract, calls_stale_what_was_so_when_it_was_handed_over_last) {
  site.given_camera(10);
  const auto joining = given_trigger(7);
  const auto leaving = given_trigger(8);
  given_topic_subscription(10, "a", {});
  given_topic_subscription(10, "b", {8});
  subscription_of_id(1)->add_trigger(joining);
  subscription_of_id(2)->remove_trigger(leaving);

  EXPECT_THAT(ids_of(subscriptions().get_stale({7, 8})), ElementsAre(1));
  subscriptions().delete_stale();

  reopen();
  EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(2));
}

TEST_P(Subscription_Repository_Contract, deletes_exactly_what_it_called_stale) {
  site.given_camera(10);
  site.given_camera(11);
  site.given_generic_subscription(100);
  for (const std::uint64_t id : {6, 7, 8}) {
    given_trigger(id);
  }
  given_topic_subscription(10, "a", {6});
  given_topic_subscription(10, "b", {6, 7});
  given_topic_subscription(11, "a", {8});
  given_topic_subscription(11, "b", {});
  const auto stale = ids_of(subscriptions().get_stale({7}));
  EXPECT_THAT(stale, ElementsAre(1, 3, 4));

  triggers().delete_all_except({7});
  EXPECT_EQ(ids_of(subscriptions().get_stale({7})), stale);
  EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(1, 2, 3, 4, 100));
  subscriptions().delete_stale();

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(subscriptions().get_stale({})), ElementsAre(2, 100));
    EXPECT_THAT(subscriptions().get_stale({7}), IsEmpty());
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", {})), ElementsAre(10, 11));
  });
}

TEST_P(Subscription_Repository_Contract, knows_nobody_s_subscription_after_it_was_deleted) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  given_topic_subscription(10, "a", {7});
  given_topic_subscription(10, "b", {7, 8});
  for (const std::uint64_t id : {1, 2}) {
    const auto record = subscription_of_id(id);
    record->remove_trigger(leaving);
    ASSERT_TRUE(subscriptions().update(record));
  }

  subscriptions().delete_stale();

  now_and_after_reopening([this] {
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), ElementsAre(2));
  });
}

TEST_P(Subscription_Repository_Contract, refuses_to_update_a_subscription_that_was_deleted) {
  site.given_camera(10);
  const auto joining = given_trigger(7);
  const auto record = given_topic_subscription(10, "a", {});
  subscriptions().delete_stale();

  record->add_trigger(joining);
  EXPECT_FALSE(subscriptions().update(record));

  now_and_after_reopening([this] { EXPECT_THAT(all_subscriptions(), IsEmpty()); });
}

TEST_P(Subscription_Repository_Contract, replaces_a_deleted_subscription_by_a_new_one) {
  site.given_camera(10);
  given_trigger(7);
  given_topic_subscription(10, "a", {});
  reopen();

  subscriptions().delete_stale();
  given_topic_subscription(10, "a", {7});

  now_and_after_reopening([this] {
    EXPECT_THAT(all_subscriptions(),
                ElementsAre("subscription 2 \"a\" camera 10 topic \"a\" category none tags [] "
                            "cameras [] triggers [7]"));
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
    EXPECT_THAT(ids_of(subscriptions().get_stale({})),
                ElementsAre(0, 3, largest_signed_id, first_unsigned_id, largest_id));
    EXPECT_THAT(holding(7), ElementsAre(0, 3, largest_signed_id, first_unsigned_id, largest_id));
  });
}

/// Topic subscriptions, a generic one, and what only another program leaves behind: a camera
/// without a topic (77) and a topic without a camera (78). All hold trigger 7.
class Inside_And_Outside : public Subscription_Repository_Contract {
 protected:
  Inside_And_Outside() {
    site.given_camera(10);
    site.given_camera(11);
    site.given_generic_subscription(100);
    given_trigger(7);
    given_trigger(8);
    given_topic_subscription(10, "a", {7});
    given_topic_subscription(10, "b", {7});
    given_topic_subscription(11, "a", {7});
    reopen();
    for (const std::string values : {"(id, name, camera_id) VALUES (77, 'no topic', 10)",
                                     "(id, name, onvif_topic) VALUES (78, 'no camera', 'a')"}) {
      foreign_program().execute("INSERT INTO subscription " + values);
    }
    foreign_program().execute("INSERT INTO subscription_trigger VALUES (77, 7), (78, 7), (100, 7)");
  }

  /// The same for those that hold trigger 7 and for those that lack trigger 8.
  std::vector<std::uint64_t> found(Subscription_Query::Topics_And_Cameras where,
                                   const std::vector<std::string>& topics,
                                   const std::vector<std::uint64_t>& camera_ids) {
    Subscription_Query query;
    query.topics_and_cameras = where;
    query.topics = topics;
    for (const std::uint64_t id : camera_ids) {
      query.cameras.push_back(camera_of_id(id));
    }
    query.trigger = a_trigger(7);
    const auto holding = ids_of(subscriptions().Get_Matching_Subscriptions(query));
    query.trigger = a_trigger(8);
    query.trigger_match = Subscription_Query::Trigger_Match::lacking;
    EXPECT_EQ(ids_of(subscriptions().Get_Matching_Subscriptions(query)), holding);
    return holding;
  }

  std::vector<std::uint64_t> inside(const std::vector<std::string>& topics,
                                    const std::vector<std::uint64_t>& camera_ids) {
    return found(Subscription_Query::Topics_And_Cameras::matching, topics, camera_ids);
  }
  std::vector<std::uint64_t> outside(const std::vector<std::string>& topics,
                                     const std::vector<std::uint64_t>& camera_ids) {
    return found(Subscription_Query::Topics_And_Cameras::outside, topics, camera_ids);
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Inside_And_Outside, testing::ValuesIn(contracts()),
                         name_of_contract);

TEST_P(Inside_And_Outside, are_complements_whatever_a_subscription_lacks) {
  EXPECT_THAT(inside({"a"}, {}), ElementsAre(1, 3, 78));
  EXPECT_THAT(outside({"a"}, {}), ElementsAre(2, 77, 100));

  EXPECT_THAT(inside({"a"}, {10}), ElementsAre(1));
  EXPECT_THAT(outside({"a"}, {10}), ElementsAre(2, 3, 77, 78, 100));

  EXPECT_THAT(inside({"a", "b"}, {10, 11}), ElementsAre(1, 2, 3));
  EXPECT_THAT(outside({"a", "b"}, {10, 11}), ElementsAre(77, 78, 100));

  EXPECT_THAT(inside({"c"}, {10}), IsEmpty());
  EXPECT_THAT(outside({"c"}, {10}), ElementsAre(1, 2, 3, 77, 78, 100));
}

TEST_P(Inside_And_Outside, are_nothing_and_everything_where_no_topic_is_named) {
  EXPECT_THAT(outside({}, {}), ElementsAre(1, 2, 3, 77, 78, 100));
  EXPECT_THAT(outside({}, {10}), ElementsAre(1, 2, 3, 77, 78, 100));
  // Inside, a list without entries restricts nothing.
  EXPECT_THAT(inside({}, {10}), ElementsAre(1, 2, 77));
}

}  // namespace
}  // namespace kuv::test
