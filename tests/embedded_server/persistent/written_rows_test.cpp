// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include "embedded_server/persistent/database_test.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Which rows are written, seen by triggers of the engine's own on every table.
class Written_Rows : public Database_Test {
 protected:
  Written_Rows() {
    site.given_server(server_id);
    site.given_schedule(1);
    site.given_schedule(2);
    site.given_category(5, "doors");
    site.given_camera(10)
        .with_tag("gate")
        .with_tag("hall", "2")
        .with_topic("a")
        .detecting_objects();
    site.given_camera(11).with_topic("b").detecting_motion();
    site.given_generic_subscription(100).in_category(5).with_tag("door").on_camera(10);
    site.given_object_type("vehicle", {"car", "truck"});
  }

  /// The rows that `action` writes: what is done, and to which table.
  template <class Action>
  std::vector<std::string> written_by(Action action) {
    if (!watched_) {
      watch(foreign_program().tables());
      watched_ = true;
    }
    foreign_program().execute("DELETE FROM row_log");
    action();
    std::vector<std::string> written;
    for (const auto& row : foreign_program().query("SELECT what FROM row_log")) {
      written.push_back(row.front().value());
    }
    return written;
  }

  std::vector<std::string> written_by_storing_the_site() {
    return written_by([this] { site.store_in(database()); });
  }

  std::shared_ptr<trigger> given_trigger() {
    auto record = a_trigger(7, {onvif("a"), onvif("b"), object_detection("car"), generic_events()});
    const auto repository = make_repository(database());
    record->schedules = {{repository->schedules().get_by_id(1)}};
    EXPECT_TRUE(repository->triggers().add(record));
    return record;
  }

  std::vector<std::string> written_by_updating(const std::shared_ptr<trigger>& record) {
    return written_by([&] { EXPECT_TRUE(make_repository(database())->triggers().update(record)); });
  }

 private:
  void watch(const std::vector<std::string>& tables) {
    foreign_program().execute("CREATE TABLE row_log (what text)");
    const bool on_postgresql = engine().name == "postgresql";
    if (on_postgresql) {
      foreign_program().execute(
          "CREATE FUNCTION note_row() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN INSERT INTO "
          "row_log VALUES (lower(TG_OP) || ' ' || TG_TABLE_NAME); RETURN NULL; END $$");
    }
    for (const std::string& table : tables) {
      for (const std::string action : {"insert", "update", "delete"}) {
        const std::string start =
            fmt::format("CREATE TRIGGER note_{0}_{1} AFTER {0} ON {1} ", action, table);
        foreign_program().execute(
            start + (on_postgresql ? "FOR EACH ROW EXECUTE FUNCTION note_row()"
                                   : fmt::format("BEGIN INSERT INTO row_log VALUES ('{} {}'); END",
                                                 action, table)));
      }
    }
  }

  bool watched_ = false;
};

INSTANTIATE_TEST_SUITE_P(Engines, Written_Rows, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Written_Rows, are_none_for_a_site_that_is_stored_again) {
  EXPECT_THAT(written_by_storing_the_site(), IsEmpty());
}

TEST_P(Written_Rows, are_those_of_what_changed_on_a_site) {
  database();
  site.given_camera(10).named("gate").with_tag("hall", "3").without_tag("gate");
  site.given_schedule(2, false);
  site.given_generic_subscription(100).named("doors").on_camera(11);
  site.given_object_type("vehicle", {"car", "bus"});

  EXPECT_THAT(
      written_by_storing_the_site(),
      UnorderedElementsAre("update camera", "delete camera_tag", "insert camera_tag",
                           "delete camera_tag", "update schedule", "update subscription",
                           "insert subscription_camera", "insert meta_type", "delete meta_type"));
  EXPECT_THAT(written_by_storing_the_site(), IsEmpty());
}

TEST_P(Written_Rows, of_a_trigger_are_those_that_changed) {
  const auto record = given_trigger();
  EXPECT_THAT(written_by_updating(record), IsEmpty());

  record->name = "new";
  EXPECT_THAT(written_by_updating(record), ElementsAre("update trigger_record"));

  record->sources = {onvif("a"), onvif("b"), object_detection("car", true), generic_events()};
  EXPECT_THAT(written_by_updating(record), ElementsAre("update trigger_source"));

  record->sources.insert(audio_detection());  // the last in their order
  EXPECT_THAT(written_by_updating(record), ElementsAre("insert trigger_source"));

  record->sources.erase(audio_detection());
  EXPECT_THAT(written_by_updating(record), ElementsAre("delete trigger_source"));

  record->schedules.insert({make_repository(database())->schedules().get_by_id(2)});
  EXPECT_THAT(written_by_updating(record), ElementsAre("insert trigger_schedule"));
  EXPECT_THAT(read_triggers(database()).front()->schedules.size(), 2);
}

TEST_P(Written_Rows, of_sources_move_up_when_one_before_them_goes) {
  const auto record = given_trigger();

  record->sources.erase(onvif("a"));

  EXPECT_THAT(written_by_updating(record),
              UnorderedElementsAre("update trigger_source", "update trigger_source",
                                   "update trigger_source", "delete trigger_source"));
  close();
  EXPECT_EQ(text_of(make_repository(database())->triggers().find_by_id(7)),
            "trigger 7 \"trigger 7\" schedules [1 ] sources [type 0 topic \"b\", type 1, "
            "type 2 object \"car\"]");
}

}  // namespace
}  // namespace kuv::test
