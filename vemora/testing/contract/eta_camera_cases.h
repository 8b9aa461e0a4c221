// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

class ETA_Camera_Repository_Contract : public Repository_Contract_Test {
 protected:
  using Query = ETA_Camera_Repository::Get_Params;

  Ids holding(std::uint64_t trigger_id) {
    Query query;
    query.trigger = a_trigger(trigger_id);
    return ids_of(eta_cameras().get(query));
  }

  /// The records of the trigger (0: of any) with, or without, one of the cameras.
  Ids found(Query::Cameras match, std::uint64_t trigger_id, const Ids& camera_ids) {
    Query query;
    query.trigger = trigger_id == 0 ? nullptr : a_trigger(trigger_id);
    query.cameras_match = match;
    for (const std::uint64_t id : camera_ids) {
      query.cameras.push_back(camera_of_id(id));
    }
    return ids_of(eta_cameras().get(query));
  }
};

TEST_P(ETA_Camera_Repository_Contract, gives_a_new_record_an_id_and_finds_it_by_its_camera) {
  site.given_camera(0);
  site.given_camera(largest_id);
  given_trigger(7);
  given_trigger(largest_id);

  const std::uint64_t id = given_eta_camera(largest_id, {largest_id, 7})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(text_of(eta_cameras().get_by_camera_id(largest_id)),
              detection(id, largest_id, {7, largest_id}).second);
    EXPECT_EQ(eta_cameras().get_by_camera_id(0), nullptr);
    EXPECT_EQ(eta_cameras().get_by_camera_id(5), nullptr);
  });
}

TEST_P(ETA_Camera_Repository_Contract, holds_the_triggers_with_all_that_they_carry) {
  site.given_camera(10);
  given_trigger(7, {object_detection("person", true)});
  given_eta_camera(10, {7});

  reopen();  // or the record that was handed over may be the one that is answered
  const auto held = detection_of_camera(10)->triggers;
  ASSERT_EQ(held.size(), 1U);
  EXPECT_EQ(text_of(*held.begin()),
            "trigger 7 \"trigger 7\" schedules [] sources [type 2 object \"person\" in motion]");
}

TEST_P(ETA_Camera_Repository_Contract, takes_one_record_for_a_camera) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  const std::uint64_t first = given_eta_camera(10, {7})->id;

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {8})));
  const std::uint64_t second = given_eta_camera(11, {8})->id;

  EXPECT_NE(first, second);
  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_eta_cameras(),
              texts_in_order({detection(first, 10, {7}), detection(second, 11, {8})}));
    EXPECT_THAT(holding(8), testing::ElementsAre(second));
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_of_a_camera_that_is_not_stored) {
  given_trigger(7);

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {7})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_without_a_camera) {
  site.given_camera(10);
  given_trigger(7);
  const auto of_no_camera = std::make_shared<eta_camera>();
  of_no_camera->add_trigger(a_trigger(7));

  EXPECT_FALSE(eta_cameras().add(of_no_camera));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
  EXPECT_TRUE(eta_cameras().add(an_eta_camera(10, {7})));
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_with_a_trigger_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {7, 8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
  EXPECT_TRUE(eta_cameras().add(an_eta_camera(10, {7})));
}

TEST_P(ETA_Camera_Repository_Contract, stores_triggers_that_join_and_leave) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  const auto joining = given_trigger(largest_id);
  const std::uint64_t id = given_eta_camera(10, {7, 8})->id;

  const auto changed = detection_of_camera(10);
  EXPECT_TRUE(changed->remove_trigger(leaving));
  EXPECT_TRUE(changed->add_trigger(joining));
  EXPECT_FALSE(changed->add_trigger(joining));
  EXPECT_TRUE(eta_cameras().update(changed));

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(id, 10, {8, largest_id})}));
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(largest_id), testing::ElementsAre(id));
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_to_update_a_record_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto unknown = an_eta_camera(10, {7});
  unknown->id = 5;

  EXPECT_FALSE(eta_cameras().update(unknown));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
    EXPECT_THAT(holding(7), testing::IsEmpty());
  });
}

TEST_P(ETA_Camera_Repository_Contract, answers_the_stored_links_after_a_refused_update) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto staying = given_trigger(8);
  const std::uint64_t id = given_eta_camera(10, {7, 8})->id;

  const auto changed = detection_of_camera(10);
  changed->remove_trigger(leaving);
  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(eta_cameras().update(changed));

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(id, 10, {7, 8})}));
    EXPECT_THAT(holding(7), testing::ElementsAre(id));
    EXPECT_THAT(holding(9), testing::IsEmpty());
  });
  const auto again = detection_of_camera(10);
  again->remove_trigger(staying);
  EXPECT_TRUE(eta_cameras().update(again));
  now_and_after_reopening(
      [&, this] { EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(id, 10, {7})})); });
}

TEST_P(ETA_Camera_Repository_Contract, survives_a_refused_update_after_a_deletion) {
  site.given_camera(10);
  const auto dead = given_trigger(7);
  given_trigger(8);
  const std::uint64_t id = given_eta_camera(10, {7, 8})->id;
  const auto changed = detection_of_camera(10);
  changed->remove_trigger(dead);
  triggers().delete_all_except({8});

  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(eta_cameras().update(changed));

  now_and_after_reopening(
      [&, this] { EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(id, 10, {8})})); });
  look_behind([&](const Stored_Rows& rows) {
    EXPECT_THAT(rows.detection_links, testing::ElementsAre(testing::Pair(id, 8)));
  });
}

TEST_P(ETA_Camera_Repository_Contract, deletes_records_without_triggers) {
  site.given_camera(10);
  site.given_camera(11);
  site.given_camera(12);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  given_eta_camera(10, {7});
  const std::uint64_t kept = given_eta_camera(11, {7, 8})->id;
  given_eta_camera(12, {});
  for (const std::uint64_t id : {10, 11}) {
    const auto record = detection_of_camera(id);
    record->remove_trigger(leaving);
    ASSERT_TRUE(eta_cameras().update(record));
  }

  eta_cameras().delete_stale();

  now_and_after_reopening([&, this] {
    EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(kept, 11, {8})}));
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_EQ(eta_cameras().get_by_camera_id(12), nullptr);
    EXPECT_THAT(holding(7), testing::IsEmpty());
    EXPECT_THAT(holding(8), testing::ElementsAre(kept));
  });
  EXPECT_NE(given_eta_camera(10, {8})->id, kept);
}

TEST_P(ETA_Camera_Repository_Contract, deletes_the_records_of_deleted_triggers) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  const std::uint64_t stale = given_eta_camera(10, {7})->id;
  const std::uint64_t kept = given_eta_camera(11, {7, 8})->id;

  triggers().delete_all_except({8});
  EXPECT_EQ(all_eta_cameras(),
            texts_in_order({detection(stale, 10, {}), detection(kept, 11, {8})}));
  eta_cameras().delete_stale();

  now_and_after_reopening(
      [&, this] { EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(kept, 11, {8})})); });
}

TEST_P(ETA_Camera_Repository_Contract, deletes_a_record_whose_new_trigger_was_never_handed_over) {
  site.given_camera(10);
  const auto joining = given_trigger(8);
  given_eta_camera(10, {});
  detection_of_camera(10)->add_trigger(joining);

  eta_cameras().delete_stale();

  if (!reopen()) {
    GTEST_SKIP() << "only what is stored tells";
  }
  EXPECT_THAT(all_eta_cameras(), testing::IsEmpty());
}

TEST_P(ETA_Camera_Repository_Contract, replaces_a_deleted_record_by_a_new_one) {
  site.given_camera(10);
  given_trigger(7);
  given_eta_camera(10, {});
  reopen();

  eta_cameras().delete_stale();
  const std::uint64_t id = given_eta_camera(10, {7})->id;

  now_and_after_reopening(
      [&, this] { EXPECT_EQ(all_eta_cameras(), texts_in_order({detection(id, 10, {7})})); });
}

TEST_P(ETA_Camera_Repository_Contract, finds_records_by_trigger_and_by_camera) {
  for (const std::uint64_t id : {10, 11, 12}) {
    site.given_camera(id);
  }
  given_trigger(7);
  given_trigger(8);
  // The highest camera comes first, so that an order by camera shows.
  const std::uint64_t on_12 = given_eta_camera(12, {7, 8})->id;
  const std::uint64_t on_10 = given_eta_camera(10, {7})->id;
  const std::uint64_t on_11 = given_eta_camera(11, {8})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(found(Query::Cameras::matching, 0, {}), in_order({on_10, on_11, on_12}));
    EXPECT_EQ(ids_of(eta_cameras().get_all()), in_order({on_10, on_11, on_12}));
    EXPECT_EQ(found(Query::Cameras::matching, 7, {}), in_order({on_10, on_12}));
    EXPECT_EQ(found(Query::Cameras::matching, 0, {12, 11, 12}), in_order({on_11, on_12}));
    EXPECT_EQ(found(Query::Cameras::matching, 7, {11, 12}), in_order({on_12}));
    EXPECT_EQ(found(Query::Cameras::matching, 7, {11}), Ids());
    EXPECT_EQ(found(Query::Cameras::matching, 9, {}), Ids());
  });
}

TEST_P(ETA_Camera_Repository_Contract, finds_the_records_outside_a_list_of_cameras) {
  for (const std::uint64_t id : {10, 11, 12}) {
    site.given_camera(id);
  }
  given_trigger(7);
  given_trigger(8);
  const std::uint64_t on_10 = given_eta_camera(10, {7})->id;
  const std::uint64_t on_11 = given_eta_camera(11, {8})->id;
  const std::uint64_t on_12 = given_eta_camera(12, {7, 8})->id;

  now_and_after_reopening([&, this] {
    EXPECT_EQ(found(Query::Cameras::outside, 7, {12}), in_order({on_10}));
    EXPECT_EQ(found(Query::Cameras::outside, 0, {12, 4711}), in_order({on_10, on_11}));
    EXPECT_EQ(found(Query::Cameras::outside, 7, {10, 11, 12}), Ids());
    // An empty list excludes nothing: the trigger leaves every record.
    EXPECT_EQ(found(Query::Cameras::outside, 7, {}), in_order({on_10, on_12}));
    EXPECT_EQ(found(Query::Cameras::outside, 0, {}), in_order({on_10, on_11, on_12}));
  });
}

}  // namespace kuv::test
