// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/records/supported_topics.h"
#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

class Site_Records_Contract : public Repository_Contract_Test {
 protected:
  using Terms = std::set<ODB_Utils::Tag_Search_Term>;
  using Cameras = Camera_Repository::Camera_List;

  Ids matching(const Terms& terms) { return ids_of(cameras().get_cameras_matching_tags(terms)); }

  static Cameras cameras_of_ids(std::initializer_list<std::uint64_t> ids) {
    Cameras list;
    for (const std::uint64_t id : ids) {
      list.push_back(camera_of_id(id));
    }
    return list;
  }
};

TEST_P(Site_Records_Contract, answer_cameras_with_all_that_they_carry) {
  site.given_camera(10)
      .named("gate 'north'")
      .with_tag("indoor")
      .with_tag("site", "north")
      .with_tag("empty", "")
      .detecting_objects();
  site.given_camera(11).detecting_motion();

  EXPECT_THAT(
      texts_of(cameras().get_cameras_matching_tags({})),
      testing::ElementsAre("camera 10 \"gate 'north'\" objects tags [empty= indoor site=north]",
                           "camera 11 \"camera\" motion tags []"));
}

TEST_P(Site_Records_Contract, match_camera_tags_by_name_and_by_value) {
  site.given_camera(1).with_tag("site", "north");
  site.given_camera(2).with_tag("site", "south");
  site.given_camera(3).with_tag("site");
  site.given_camera(4).with_tag("site", "");
  site.given_camera(5).with_tag("Site", "north");
  site.given_camera(6);

  EXPECT_THAT(matching({{"site", std::nullopt}}), testing::ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(matching({{"site", "north"}}), testing::ElementsAre(1));
  EXPECT_THAT(matching({{"site", ""}}), testing::ElementsAre(4));
  EXPECT_THAT(matching({{"site", "North"}}), testing::IsEmpty());
  EXPECT_THAT(matching({{"other", std::nullopt}}), testing::IsEmpty());
  EXPECT_THAT(matching({{"site", "south"}, {"Site", std::nullopt}, {"site", "north"}}),
              testing::ElementsAre(1, 2, 5));
  EXPECT_THAT(matching({}), testing::ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_P(Site_Records_Contract, order_cameras_by_unsigned_id) {
  for (const std::uint64_t id :
       {largest_id, std::uint64_t{0}, first_unsigned_id, std::uint64_t{3}, largest_signed_id}) {
    site.given_camera(id).with_tag("all").detecting_objects().detecting_motion();
  }
  const auto in_order =
      testing::ElementsAre(0, 3, largest_signed_id, first_unsigned_id, largest_id);

  EXPECT_THAT(matching({}), in_order);
  EXPECT_THAT(matching({{"all", std::nullopt}}), in_order);
  EXPECT_THAT(ids_of(cameras().get_object_detection_cameras({})), in_order);
  EXPECT_THAT(ids_of(cameras().get_motion_detection_cameras({})), in_order);
  EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("topic", {})), in_order);
}

TEST_P(Site_Records_Contract, answer_each_camera_once_however_often_it_is_named) {
  site.given_camera(1).detecting_objects();
  site.given_camera(2).detecting_objects();
  site.given_camera(largest_id).detecting_objects();

  EXPECT_THAT(ids_of(cameras().get_object_detection_cameras(
                  cameras_of_ids({largest_id, 2, 1, largest_id, 2}))),
              testing::ElementsAre(1, 2, largest_id));
}

TEST_P(Site_Records_Contract, tell_which_cameras_take_part_in_detection) {
  site.given_camera(1).detecting_objects();
  site.given_camera(2).detecting_motion();
  site.given_camera(3).detecting_objects().detecting_motion();
  site.given_camera(4);

  EXPECT_THAT(ids_of(cameras().get_object_detection_cameras({})), testing::ElementsAre(1, 3));
  EXPECT_THAT(ids_of(cameras().get_motion_detection_cameras({})), testing::ElementsAre(2, 3));
  EXPECT_THAT(ids_of(cameras().get_object_detection_cameras(cameras_of_ids({1, 2, 4}))),
              testing::ElementsAre(1));
  EXPECT_THAT(ids_of(cameras().get_motion_detection_cameras(cameras_of_ids({1, 2, 4}))),
              testing::ElementsAre(2));
  EXPECT_THAT(cameras().get_object_detection_cameras(cameras_of_ids({2, 4})), testing::IsEmpty());
}

TEST_P(Site_Records_Contract, tell_which_cameras_need_a_subscription) {
  site.given_camera(1);
  site.given_camera(2);
  site.given_camera(3);
  site.given_generic_subscription(100).on_camera(3);
  given_trigger(7);
  given_topic_subscription(2, "a.b/c", {7});

  now_and_after_reopening([this] {
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a.b/c", {})),
                testing::ElementsAre(1, 3));
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a.b/c", cameras_of_ids({2, 3}))),
                testing::ElementsAre(3));
    EXPECT_THAT(cameras().get_cameras_needing_subscription("a.b/c", cameras_of_ids({2})),
                testing::IsEmpty());
    EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", {})),
                testing::ElementsAre(1, 2, 3));
  });
}

TEST_P(Site_Records_Contract, name_only_cameras_that_are_stored) {
  site.given_camera(1).detecting_objects().detecting_motion();

  const Cameras named = cameras_of_ids({2, 1});
  EXPECT_THAT(ids_of(cameras().get_object_detection_cameras(named)), testing::ElementsAre(1));
  EXPECT_THAT(ids_of(cameras().get_motion_detection_cameras(named)), testing::ElementsAre(1));
  EXPECT_THAT(ids_of(cameras().get_cameras_needing_subscription("a", named)),
              testing::ElementsAre(1));
}

TEST_P(Site_Records_Contract, answer_nothing_of_an_empty_site) {
  EXPECT_THAT(cameras().get_cameras_matching_tags({}), testing::IsEmpty());
  EXPECT_THAT(cameras().get_object_detection_cameras({}), testing::IsEmpty());
  EXPECT_THAT(cameras().get_motion_detection_cameras({}), testing::IsEmpty());
  EXPECT_THAT(cameras().get_cameras_needing_subscription("a", {}), testing::IsEmpty());
  EXPECT_EQ(repository().servers().get_by_id(1), nullptr);
  EXPECT_EQ(repository().schedules().get_by_id(1), nullptr);
  EXPECT_EQ(repository().metadata_event_categories().find_by_name(""), nullptr);
  EXPECT_EQ(triggers().find_by_id(1), nullptr);
  EXPECT_EQ(eta_cameras().get_by_camera_id(1), nullptr);
  EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
  EXPECT_THAT(all_subscriptions(), testing::IsEmpty());
  triggers().delete_all();
  subscriptions().delete_stale();
  eta_cameras().delete_stale();
}

TEST_P(Site_Records_Contract, tell_the_topics_that_a_camera_can_send) {
  site.given_camera(1).with_topic("tns1:VideoSource/MotionAlarm").with_topic("a.b/c");
  site.given_camera(2);

  const auto found = cameras().get_cameras_matching_tags({});

  ASSERT_EQ(found.size(), 2U);
  const auto& topics = supported_topics(*found[0]);
  EXPECT_EQ(topics.size(), 2U);
  EXPECT_TRUE(is_supported(topics, "a.b/c"));
  EXPECT_TRUE(is_supported(topics, "tns1:VideoSource/MotionAlarm"));
  EXPECT_FALSE(is_supported(topics, "tns1:VideoSource"));
  EXPECT_TRUE(supported_topics(*found[1]).empty());
}

TEST_P(Site_Records_Contract, find_servers_with_their_tags) {
  site.given_server(largest_id).name = "head office";
  site.given_server(largest_id).tags = {{"site", {"north"}}, {"indoor", {}}};
  site.given_server(0).name = "zero";

  const auto found = repository().servers().get_by_id(largest_id);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->id, largest_id);
  EXPECT_EQ(found->name, "head office");
  EXPECT_EQ(found->tags, (Tag_Map{{"indoor", {}}, {"site", {"north"}}}));
  const auto zero = repository().servers().get_by_id(0);
  ASSERT_NE(zero, nullptr);
  EXPECT_EQ(zero->name, "zero");
  EXPECT_EQ(repository().servers().get_by_id(1), nullptr);
}

TEST_P(Site_Records_Contract, find_schedules_usable_or_not) {
  site.given_schedule(0).name = "days";
  site.given_schedule(largest_id, false).name = "nights";

  const auto usable = repository().schedules().get_by_id(0);
  const auto unusable = repository().schedules().get_by_id(largest_id);
  ASSERT_NE(usable, nullptr);
  ASSERT_NE(unusable, nullptr);
  EXPECT_EQ(usable->name, "days");
  EXPECT_TRUE(usable->usable);
  EXPECT_EQ(unusable->id, largest_id);
  EXPECT_EQ(unusable->name, "nights");
  EXPECT_FALSE(unusable->usable);
  EXPECT_EQ(repository().schedules().get_by_id(1), nullptr);
}

TEST_P(Site_Records_Contract, find_categories_by_their_whole_name) {
  site.given_category(largest_id, "access control");
  const std::string with_zero("zero\0inside", 11);
  if (GetParam().stores_any_bytes) {
    site.given_category(2, with_zero);
  }

  const auto found = repository().metadata_event_categories().find_by_name("access control");
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->id, largest_id);
  EXPECT_EQ(found->name, "access control");
  EXPECT_EQ(repository().metadata_event_categories().find_by_name("access"), nullptr);
  EXPECT_EQ(repository().metadata_event_categories().find_by_name("Access control"), nullptr);
  EXPECT_EQ(repository().metadata_event_categories().find_by_name("zero"), nullptr);
  EXPECT_EQ(repository().metadata_event_categories().find_by_name(with_zero) != nullptr,
            GetParam().stores_any_bytes);
}

}  // namespace kuv::test
