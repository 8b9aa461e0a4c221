#include "embedded_server/persistent/database_test.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Detection_Query = ETA_Camera_Repository::Get_Params;

class ETA_Camera_Repository_Contract : public Contract_Test {
 protected:
  std::vector<std::uint64_t> holding(std::uint64_t trigger_id) {
    Detection_Query query;
    query.trigger = a_trigger(trigger_id);
    return ids_of(eta_cameras().get(query));
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, ETA_Camera_Repository_Contract, testing::ValuesIn(contracts()),
                         name_of_contract);

TEST_P(ETA_Camera_Repository_Contract, gives_a_new_record_an_id_and_finds_it_by_its_camera) {
  site.given_camera(0);
  site.given_camera(largest_id);
  given_trigger(7);
  given_trigger(largest_id);

  EXPECT_EQ(given_eta_camera(largest_id, {largest_id, 7})->id, 1U);

  now_and_after_reopening([this] {
    EXPECT_EQ(text_of(eta_cameras().get_by_camera_id(largest_id)),
              "detection 1 camera 18446744073709551615 triggers [7 18446744073709551615]");
    EXPECT_EQ(eta_cameras().get_by_camera_id(0), nullptr);
    EXPECT_EQ(eta_cameras().get_by_camera_id(5), nullptr);
  });
}

TEST_P(ETA_Camera_Repository_Contract, holds_the_triggers_with_all_that_they_carry) {
  site.given_camera(10);
  given_trigger(7, {object_detection("person", true)});
  given_eta_camera(10, {7});

  reopen();
  const auto held = eta_cameras().get_by_camera_id(10)->triggers;
  ASSERT_EQ(held.size(), 1U);
  EXPECT_EQ(text_of(*held.begin()),
            "trigger 7 \"trigger 7\" schedules [] sources [type 2 object \"person\" in motion]");
}

TEST_P(ETA_Camera_Repository_Contract, takes_one_record_for_a_camera) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  given_eta_camera(10, {7});

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {8})));
  EXPECT_TRUE(eta_cameras().add(an_eta_camera(11, {8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 1 camera 10 triggers [7]",
                                               "detection 2 camera 11 triggers [8]"));
    EXPECT_THAT(holding(8), ElementsAre(2));
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_of_a_camera_that_is_not_stored) {
  given_trigger(7);

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {7})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), IsEmpty());
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_THAT(holding(7), IsEmpty());
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_without_a_camera) {
  site.given_camera(10);
  given_trigger(7);
  const auto of_no_camera = std::make_shared<eta_camera>();
  of_no_camera->add_trigger(a_trigger(7));

  EXPECT_FALSE(eta_cameras().add(of_no_camera));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
  });
  EXPECT_TRUE(eta_cameras().add(an_eta_camera(10, {7})));
}

TEST_P(ETA_Camera_Repository_Contract, refuses_a_record_with_a_trigger_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);

  EXPECT_FALSE(eta_cameras().add(an_eta_camera(10, {7, 8})));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), IsEmpty());
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_THAT(holding(7), IsEmpty());
  });
  EXPECT_TRUE(eta_cameras().add(an_eta_camera(10, {7})));
}

TEST_P(ETA_Camera_Repository_Contract, stores_triggers_that_join_and_leave) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  const auto joining = given_trigger(largest_id);
  given_eta_camera(10, {7, 8});

  const auto changed = eta_cameras().get_by_camera_id(10);
  EXPECT_TRUE(changed->remove_trigger(leaving));
  EXPECT_TRUE(changed->add_trigger(joining));
  EXPECT_FALSE(changed->add_trigger(joining));
  EXPECT_TRUE(eta_cameras().update(changed));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(),
                ElementsAre("detection 1 camera 10 triggers [8 18446744073709551615]"));
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(largest_id), ElementsAre(1));
  });
}

TEST_P(ETA_Camera_Repository_Contract, refuses_to_update_a_record_that_is_not_stored) {
  site.given_camera(10);
  given_trigger(7);
  const auto unknown = an_eta_camera(10, {7});
  unknown->id = 5;

  EXPECT_FALSE(eta_cameras().update(unknown));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), IsEmpty());
    EXPECT_THAT(holding(7), IsEmpty());
  });
}

TEST_P(ETA_Camera_Repository_Contract, answers_the_stored_links_after_a_refused_update) {
  site.given_camera(10);
  const auto leaving = given_trigger(7);
  const auto staying = given_trigger(8);
  given_eta_camera(10, {7, 8});

  const auto changed = eta_cameras().get_by_camera_id(10);
  changed->remove_trigger(leaving);
  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(eta_cameras().update(changed));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 1 camera 10 triggers [7 8]"));
    EXPECT_THAT(holding(7), ElementsAre(1));
    EXPECT_THAT(holding(9), IsEmpty());
  });
  const auto again = eta_cameras().get_by_camera_id(10);
  again->remove_trigger(staying);
  EXPECT_TRUE(eta_cameras().update(again));
  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 1 camera 10 triggers [7]"));
  });
}

TEST_P(ETA_Camera_Repository_Contract, survives_a_refused_update_after_a_deletion) {
  site.given_camera(10);
  const auto dead = given_trigger(7);
  given_trigger(8);
  given_eta_camera(10, {7, 8});
  const auto changed = eta_cameras().get_by_camera_id(10);
  changed->remove_trigger(dead);
  triggers().delete_all_except({8});

  changed->add_trigger(a_trigger(9));
  EXPECT_FALSE(eta_cameras().update(changed));

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 1 camera 10 triggers [8]"));
  });
  reopen();
  EXPECT_EQ(foreign_program().query("SELECT linked_id FROM eta_camera_trigger"), (Rows{{"8"}}));
}

TEST_P(ETA_Camera_Repository_Contract, deletes_records_without_triggers) {
  site.given_camera(10);
  site.given_camera(11);
  site.given_camera(12);
  const auto leaving = given_trigger(7);
  given_trigger(8);
  given_eta_camera(10, {7});
  given_eta_camera(11, {7, 8});
  given_eta_camera(12, {});
  for (const std::uint64_t id : {10, 11}) {
    const auto record = eta_cameras().get_by_camera_id(id);
    record->remove_trigger(leaving);
    ASSERT_TRUE(eta_cameras().update(record));
  }

  eta_cameras().delete_stale();

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 2 camera 11 triggers [8]"));
    EXPECT_EQ(eta_cameras().get_by_camera_id(10), nullptr);
    EXPECT_EQ(eta_cameras().get_by_camera_id(12), nullptr);
    EXPECT_THAT(holding(7), IsEmpty());
    EXPECT_THAT(holding(8), ElementsAre(2));
  });
  EXPECT_EQ(given_eta_camera(10, {8})->id, 4U);
}

TEST_P(ETA_Camera_Repository_Contract, deletes_the_records_of_deleted_triggers) {
  site.given_camera(10);
  site.given_camera(11);
  given_trigger(7);
  given_trigger(8);
  given_eta_camera(10, {7});
  given_eta_camera(11, {7, 8});

  triggers().delete_all_except({8});
  EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 1 camera 10 triggers []",
                                             "detection 2 camera 11 triggers [8]"));
  eta_cameras().delete_stale();

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 2 camera 11 triggers [8]"));
  });
}

TEST_P(ETA_Camera_Repository_Contract, deletes_a_record_whose_new_trigger_was_never_handed_over) {
  site.given_camera(10);
  const auto joining = given_trigger(8);
  given_eta_camera(10, {});
  eta_cameras().get_by_camera_id(10)->add_trigger(joining);

  eta_cameras().delete_stale();

  reopen();
  EXPECT_THAT(all_eta_cameras(), IsEmpty());
}

TEST_P(ETA_Camera_Repository_Contract, replaces_a_deleted_record_by_a_new_one) {
  site.given_camera(10);
  given_trigger(7);
  given_eta_camera(10, {});
  reopen();

  eta_cameras().delete_stale();
  given_eta_camera(10, {7});

  now_and_after_reopening([this] {
    EXPECT_THAT(all_eta_cameras(), ElementsAre("detection 2 camera 10 triggers [7]"));
  });
}

TEST_P(ETA_Camera_Repository_Contract, gives_ids_up_to_the_largest) {
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
    EXPECT_THAT(holding(7), ElementsAre(0, largest_id));
  });
}

}  // namespace
}  // namespace kuv::test
