// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/database_contract.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;

/// Which ids our databases give: from 1 on, and none a second time.
class Given_Ids : public Database_Contract_Test {};

INSTANTIATE_TEST_SUITE_P(Engines, Given_Ids, testing::ValuesIn(database_implementations()),
                         name_of_implementation);

TEST_P(Given_Ids, begin_with_one_for_each_kind_of_record) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);

  EXPECT_EQ(given_topic_subscription(10, "a", {7})->id, 1U);
  EXPECT_EQ(given_topic_subscription(10, "b", {7})->id, 2U);
  EXPECT_EQ(given_eta_camera(11, {7})->id, 1U);
  EXPECT_EQ(given_eta_camera(10, {7})->id, 2U);
}

TEST_P(Given_Ids, skip_those_that_the_site_has) {
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

TEST_P(Given_Ids, are_not_given_to_another_subscription) {
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

TEST_P(Given_Ids, are_not_given_to_another_detection_record) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  EXPECT_EQ(given_eta_camera(10, {})->id, 1U);
  EXPECT_EQ(given_eta_camera(11, {7})->id, 2U);
  reopen();

  eta_cameras().delete_stale();

  EXPECT_EQ(given_eta_camera(10, {7})->id, 3U);
  reopen();
  EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 2 camera 11 triggers [7]",
                                             "detection 3 camera 10 triggers [7]"));
}

TEST_P(Given_Ids, go_on_from_the_site_s_largest) {
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

TEST_P(Given_Ids, go_up_to_the_largest) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  reopen();
  foreign_program().execute("DELETE FROM id_allocation");
  foreign_program().execute("INSERT INTO id_allocation VALUES ('eta_camera', -1)");

  EXPECT_EQ(given_eta_camera(10, {7})->id, largest_id);
  EXPECT_EQ(given_eta_camera(11, {7})->id, 0U);

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(),
                ElementsAre("detection 0 camera 11 triggers [7]",
                            "detection 18446744073709551615 camera 10 triggers [7]"));
    ETA_Camera_Repository::Get_Params query;
    query.trigger = a_trigger(7);
    EXPECT_THAT(ids_of(eta_cameras().get(query)), ElementsAre(0, largest_id));
  });
}

}  // namespace
}  // namespace kuv::test
