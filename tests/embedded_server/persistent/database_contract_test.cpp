// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/database_contract.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;

/// What our databases do where the contracts leave it open.
class Database_Contract : public Database_Contract_Test {};

INSTANTIATE_TEST_SUITE_P(Engines, Database_Contract, testing::ValuesIn(database_implementations()),
                         name_of_implementation);

TEST_P(Database_Contract, refuses_a_subscription_with_details_that_are_not_stored) {
  site.given_camera(10);
  site.given_category(5, "doors");
  given_trigger(7);
  const auto of_category = [](std::uint64_t id) {
    auto record = a_topic_subscription(10, "a", {7});
    record->category = std::make_shared<metadata_event_category>(metadata_event_category{id, "c"});
    return record;
  };
  const auto with_further_cameras = [](std::initializer_list<std::uint64_t> ids) {
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

TEST_P(Database_Contract, refuses_a_subscription_with_a_tag_that_cannot_be_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto with_tag = [](const std::string& topic, const std::string& name) {
    auto record = a_topic_subscription(10, topic, {7});
    record->tags.insert({name, {}});
    return record;
  };

  EXPECT_TRUE(subscriptions().add(with_tag("a", "door")));
  EXPECT_EQ(subscriptions().add(with_tag("b", "\xff")), takes_any_bytes());

  reopen();
  EXPECT_EQ(all_subscriptions().size(), takes_any_bytes() ? 2U : 1U);
}

TEST_P(Database_Contract, leaves_a_subscription_of_half_a_kind_to_whoever_looks_at_it) {
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

TEST_P(Database_Contract, reads_capabilities_in_a_pass_and_after_it) {
  site.given_camera(1).with_topic("tns1:VideoSource/MotionAlarm").with_topic("a.b/c");
  site.given_camera(2);
  site.given_camera(3).with_capabilities(R"({"Model": "X", "List": ["one", "two"]})");
  const auto path = "Metadata.Mode.capabilities.On.TopicFilter.capabilities";

  const auto in_the_pass = cameras().get_cameras_matching_tags({});
  const auto& topics = in_the_pass.at(0)->capabilities.tree().get_child(path);
  EXPECT_EQ(topics.size(), 2U);
  EXPECT_EQ(topics.count("a.b/c"), 1U);
  EXPECT_EQ(topics.count("tns1:VideoSource/MotionAlarm"), 1U);
  EXPECT_TRUE(in_the_pass.at(1)->capabilities.tree().empty());

  const auto kept = cameras().get_cameras_matching_tags({}).at(2);
  reopen();
  EXPECT_EQ(kept->capabilities.tree().get<std::string>("Model"), "X");
  EXPECT_EQ(kept->capabilities.tree().get_child("List").size(), 2U);
}

TEST_P(Database_Contract, reads_the_latest_capabilities_of_a_camera) {
  site.given_camera(1).with_capabilities(R"({"Model": "old"})");
  site.given_camera(2).with_capabilities(R"({"Model": "old"})");
  site.given_camera(3).with_capabilities(R"({"Model": "old"})");
  ASSERT_EQ(ids_of(cameras().get_cameras_matching_tags({})).size(), 3U);
  reopen();
  site.given_camera(2).with_capabilities(R"({"Model": "new"})");
  site.given_camera(3).with_capabilities("");
  store_site();

  const auto found = cameras().get_cameras_matching_tags({});

  EXPECT_EQ(found.at(0)->capabilities.tree().get<std::string>("Model"), "old");
  EXPECT_EQ(found.at(1)->capabilities.tree().get<std::string>("Model"), "new");
  EXPECT_TRUE(found.at(2)->capabilities.tree().empty());
}

TEST_P(Database_Contract, keeps_the_triggers_of_a_generic_subscription_that_is_stored_again) {
  site.given_generic_subscription(100).named("door").with_tag("door", "main");
  const auto joining = given_trigger(7);
  const auto generic = subscription_of_id(100);
  generic->add_trigger(joining);
  ASSERT_TRUE(subscriptions().update(generic));
  reopen();

  site.given_generic_subscription(100).named("gate").without_tag("door").with_tag("gate");
  store_site();

  EXPECT_THAT(all_subscriptions(),
              ElementsAre("subscription 100 \"gate\" camera none topic none category none "
                          "tags [gate] cameras [] triggers [7]"));
}

TEST_P(Database_Contract, lists_all_triggers_by_unsigned_id) {
  for (const std::uint64_t id :
       {std::uint64_t{0}, std::uint64_t{1}, largest_signed_id, first_unsigned_id, largest_id}) {
    given_trigger(id);
  }

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(read_triggers(database())),
                ElementsAre(0, 1, largest_signed_id, first_unsigned_id, largest_id));
  });

  triggers().delete_all_except({1, largest_id});
  now_and_after_reopening(
      [this] { EXPECT_THAT(ids_of(read_triggers(database())), ElementsAre(1, largest_id)); });

  triggers().delete_all();
  now_and_after_reopening([this] { EXPECT_THAT(read_triggers(database()), testing::IsEmpty()); });
}

TEST_P(Database_Contract, loads_the_category_and_the_cameras_of_a_generic_subscription) {
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

  now_and_after_reopening([this] {
    EXPECT_THAT(
        all_subscriptions(),
        ElementsAre("subscription 9223372036854775808 \"door forced\" camera none topic none "
                    "category 4 tags [door=main indoor] cameras [10 18446744073709551615] "
                    "triggers []"));
  });
}

}  // namespace
}  // namespace kuv::test
