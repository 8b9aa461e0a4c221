// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <functional>
#include <utility>

#include "embedded_server/persistent/site_at_work.h"
#include "embedded_server/persistent/sqlite_connection.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

class SQLite_Faults : public testing::Test, public Site_At_Work {
 protected:
  SQLite_Faults() : Site_At_Work({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {}
};

TEST_F(SQLite_Faults, stick_to_every_later_call_of_a_pass) {
  given_a_trigger_at_work();
  foreign_program().execute("ALTER TABLE subscription_trigger RENAME TO elsewhere");
  const auto repository = make_repository(database());
  Pass_Scope pass(database(), server_id);
  ASSERT_TRUE(repository->triggers().add(a_trigger(9)));
  EXPECT_EQ(pass.fault(), std::nullopt);

  const std::string fault = prefixed("no such table: subscription_trigger");
  EXPECT_EQ(complaint_of([&] { repository->metadata_event_subscriptions().get_stale({7}); }),
            fault);

  foreign_program().execute("ALTER TABLE elsewhere RENAME TO subscription_trigger");
  EXPECT_EQ(pass.fault(), fault);
  for (const auto& [name, operate] : all_operations()) {
    EXPECT_EQ(complaint_of([&, &operate = operate] { operate(*repository); }), fault) << name;
  }
}

/// ODB calls all of them a key that is there already.
TEST_F(SQLite_Faults, of_a_row_that_is_refused_say_what_refused_it) {
  given_a_trigger_at_work();
  const auto complaint = [this] {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    return complaint_of([&] { work_on_camera(*repository, 9, 11); });
  };
  foreign_program().execute(
      "CREATE TRIGGER trouble BEFORE INSERT ON trigger_record BEGIN SELECT RAISE(ABORT, 'no "
      "more'); "
      "END");
  EXPECT_EQ(complaint(), prefixed("no more"));
  foreign_program().execute(
      "DROP TRIGGER trouble; CREATE UNIQUE INDEX one_kind ON trigger_source (type)");
  EXPECT_EQ(complaint(), prefixed("UNIQUE constraint failed: trigger_source.type"));
  foreign_program().execute("DROP INDEX one_kind");
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Faults, keep_what_the_pass_had_done_before_them) {
  given_a_trigger_at_work();
  foreign_program().execute("ALTER TABLE subscription_trigger RENAME TO elsewhere");
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    ASSERT_TRUE(repository->triggers().add(a_trigger(9)));
    const std::string fault =
        complaint_of([&] { repository->metadata_event_subscriptions().delete_stale(); });

    EXPECT_EQ(complaint_of([&] { pass.end(); }), "no complaint");

    EXPECT_EQ(pass.fault(), fault);
    EXPECT_THAT(pass.changes().triggers.added, ElementsAre(9));
  }

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
  EXPECT_EQ(foreign_program().count("elsewhere"), 1U);
  foreign_program().execute("ALTER TABLE elsewhere RENAME TO subscription_trigger");
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Faults, of_a_single_operation_do_not_stick) {
  given_a_trigger_at_work();
  const auto repository = make_repository(database());
  foreign_program().execute("ALTER TABLE subscription_trigger RENAME TO elsewhere");
  EXPECT_EQ(complaint_of([&] { repository->metadata_event_subscriptions().get_stale({}); }),
            prefixed("no such table: subscription_trigger"));

  foreign_program().execute("ALTER TABLE elsewhere RENAME TO subscription_trigger");

  EXPECT_EQ(repository->metadata_event_subscriptions().get_stale({}).size(), 2U);
}

/// What is written last cannot be written.
class SQLite_Write_Faults : public SQLite_Faults {
 protected:
  void given_that_the_last_write_fails() {
    given_a_trigger_at_work();
    foreign_program().execute(
        "CREATE TRIGGER trouble BEFORE INSERT ON pending_camera "
        "BEGIN INSERT INTO missing VALUES (1); END");
  }
};

TEST_F(SQLite_Write_Faults, leave_nothing_half_written) {
  given_that_the_last_write_fails();
  const auto before = stored();
  const std::string fault = prefixed("no such table: main.missing");
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }), fault);

    EXPECT_EQ(stored(), before);
    EXPECT_EQ(pass.fault(), fault);
    EXPECT_EQ(complaint_of([&] { repository->eta_cameras().get_all(); }), fault);
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + "; nothing that the pass wrote was kept");
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + "; nothing that the pass wrote was kept");
    EXPECT_THAT(pass.changes().triggers.added, IsEmpty());
    EXPECT_THAT(pass.changes().subscription_links.added, IsEmpty());
  }
  EXPECT_EQ(stored(), before);

  foreign_program().execute("DROP TRIGGER trouble");
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Write_Faults, leave_nothing_half_written_at_the_end_of_a_pass) {
  given_that_the_last_write_fails();
  const auto before = stored();
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    ASSERT_TRUE(repository->triggers().add(a_trigger(9)));
    const auto left = repository->metadata_event_subscriptions().get_stale({9}).at(0);
    left->remove_trigger(repository->triggers().find_by_id(7));
    ASSERT_TRUE(repository->metadata_event_subscriptions().update(left));

    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              prefixed("no such table: main.missing; nothing that the pass wrote was kept"));

    EXPECT_EQ(pass.fault(), prefixed("no such table: main.missing"));
  }
  EXPECT_EQ(stored(), before);
}

TEST_F(SQLite_Write_Faults, come_out_of_single_operations) {
  given_that_the_last_write_fails();
  const auto before = stored();
  const auto repository = make_repository(database());
  const auto left = repository->metadata_event_subscriptions().get_stale({9}).at(0);
  left->remove_trigger(a_trigger(7));

  EXPECT_EQ(complaint_of([&] { repository->metadata_event_subscriptions().update(left); }),
            prefixed("no such table: main.missing"));

  EXPECT_EQ(stored(), before);
}

TEST_F(SQLite_Write_Faults, of_a_full_disk_leave_nothing_half_written) {
  given_a_trigger_at_work();
  const auto before = stored();
  sqlite3* const connection = idle_connection(*database());
  ASSERT_EQ(sqlite3_exec(connection, "PRAGMA max_page_count=1", nullptr, nullptr, nullptr),
            SQLITE_OK);
  const std::string fault = prefixed("database or disk is full");
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    for (std::uint64_t id = 20; id < 40; ++id) {
      auto large = a_trigger(id);
      large->name.assign(100000, 'x');
      ASSERT_TRUE(repository->triggers().add(large));
    }
    EXPECT_EQ(complaint_of([&] { repository->eta_cameras().delete_stale(); }), fault);
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + "; nothing that the pass wrote was kept");
  }
  EXPECT_EQ(stored(), before);

  ASSERT_EQ(sqlite3_exec(connection, "PRAGMA max_page_count=1000000", nullptr, nullptr, nullptr),
            SQLITE_OK);
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Write_Faults, tell_of_a_program_that_keeps_the_database_locked) {
  given_a_trigger_at_work();
  const auto before = stored();
  {
    const auto impatient = open_again(std::chrono::milliseconds(20));
    Pass_Scope pass(impatient, server_id);
    const auto repository = make_repository(impatient);
    foreign_program().execute("BEGIN IMMEDIATE");

    const std::string fault = complaint_of([&] { work_on_camera(*repository, 9, 11); });

    EXPECT_THAT(fault, StartsWith(prefixed("another program keeps the database locked; gave up ")));
    EXPECT_EQ(complaint_of([&] { repository->triggers().find_by_id(7); }), fault);
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + "; nothing that the pass wrote was kept");
    foreign_program().execute("ROLLBACK");
  }
  EXPECT_EQ(stored(), before);
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Write_Faults, tell_of_a_program_that_wrote_during_the_pass) {
  given_a_trigger_at_work();
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    ASSERT_EQ(repository->cameras().get_cameras_matching_tags({}).size(), 2U);
    foreign_program().execute("UPDATE camera SET name = 'by another program'");
    const std::string fault = prefixed("another program changed the database meanwhile");

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }), fault);

    EXPECT_EQ(pass.fault(), fault);
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + "; nothing that the pass wrote was kept");
  }
  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  EXPECT_EQ(foreign_program().query("SELECT DISTINCT name FROM camera"),
            (Rows{{"by another program"}}));
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Faults, are_none_where_another_program_works_during_an_unchanged_pass) {
  given_a_trigger_at_work();
  const auto before = stored();
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  ASSERT_EQ(repository->metadata_event_subscriptions().get_stale({}).size(), 2U);

  EXPECT_EQ(stored(), before);
  foreign_program().execute("INSERT INTO schedule VALUES (77, 'by another program', 1)");
  repository->triggers().delete_all_except({7});
  repository->metadata_event_subscriptions().delete_stale();
  repository->eta_cameras().delete_stale();
  pass.end();

  EXPECT_EQ(pass.fault(), std::nullopt);
  EXPECT_EQ(foreign_program().count("schedule"), 2U);
}

TEST_F(SQLite_Faults, of_a_corrupt_capability_document_name_the_camera_and_stick) {
  given_a_trigger_at_work();
  foreign_program().execute("UPDATE capability_document SET text = '{\"Metadata\": '");
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  const auto cameras = repository->cameras().get_cameras_matching_tags({});
  EXPECT_TRUE(cameras.at(1)->capabilities.tree().empty());

  const std::string fault = complaint_of([&] { cameras.at(0)->capabilities.tree(); });

  EXPECT_THAT(fault, StartsWith(prefixed("the capability document of camera 10 is corrupt: ")));
  EXPECT_EQ(complaint_of([&] { cameras.at(0)->capabilities.tree(); }), fault);
  EXPECT_EQ(complaint_of([&] { repository->eta_cameras().delete_stale(); }), fault);
  EXPECT_EQ(complaint_of([&] { pass.end(); }), "no complaint");
}

std::string nested(std::size_t levels) {
  std::string text;
  for (std::size_t level = 0; level < levels; ++level) {
    text += "{\"]\\\"[\":";
  }
  return text + "\"[{\"" + std::string(levels, '}');
}

TEST_F(SQLite_Faults, of_a_capability_document_nested_too_deeply_name_the_camera_and_stick) {
  given_a_trigger_at_work();
  const auto store = [this](std::size_t levels) {
    foreign_program().execute("UPDATE capability_document SET text = '" + nested(levels) + "'");
  };
  store(1000);
  EXPECT_EQ(complaint_of([&] {
              for (const auto& camera : read_cameras(database())) {
                camera->capabilities.tree();
              }
            }),
            "no complaint");
  for (const std::size_t levels : {std::size_t{1001}, std::size_t{1000000}}) {
    store(levels);
    Pass_Scope pass(database(), server_id);
    const auto cameras = make_repository(database())->cameras().get_cameras_matching_tags({});

    const std::string fault = complaint_of([&] { cameras.at(0)->capabilities.tree(); });

    EXPECT_EQ(fault, prefixed("the capability document of camera 10 is corrupt: nested more than "
                              "1000 levels deep"));
    EXPECT_EQ(complaint_of([&] { cameras.at(0)->capabilities.tree(); }), fault);
  }
}

TEST_F(SQLite_Faults, of_capabilities_nested_too_deeply_are_those_of_storing_them) {
  site.given_camera(20).with_capabilities(nested(1000));
  database();
  const auto stored = foreign_program().count("camera");
  site.given_camera(21).with_capabilities(nested(1001));

  EXPECT_EQ(complaint_of([&] { site.store_in(database()); }),
            prefixed("the capabilities of camera 21 are nested more than 1000 levels deep"));
  EXPECT_EQ(foreign_program().count("camera"), stored);
}

TEST_F(SQLite_Faults, of_a_link_to_nothing_are_mended_by_the_next_pass) {
  given_a_trigger_at_work();
  foreign_program().execute("INSERT INTO subscription_trigger VALUES (1, 4711), (55, 7)");
  foreign_program().execute("INSERT INTO eta_camera_trigger VALUES (1, 4711), (55, 7)");
  const auto repository = make_repository(database());
  EXPECT_THAT(repository->metadata_event_subscriptions().get_stale({}).at(0)->trigger_ids(),
              ElementsAre(7));

  {
    Pass_Scope pass(database(), server_id);
    EXPECT_EQ(repository->eta_cameras().get_all().size(), 1U);
    EXPECT_EQ(repository->metadata_event_subscriptions().get_stale({}).size(), 2U);
    repository->eta_cameras().delete_stale();
  }

  EXPECT_EQ(foreign_program().query("SELECT * FROM subscription_trigger"), (Rows{{"1", "7"}}));
  EXPECT_EQ(foreign_program().query("SELECT * FROM eta_camera_trigger"), (Rows{{"1", "7"}}));
}

// What a build for developers looks at after each pass.

/// What the self-check finds in a pass that works on a camera, when the database makes something
/// else of what it is given.
std::string found_by_self_check(const std::string& when, const std::string& meddling) {
  Site_At_Work site({"sqlite", [] { return std::make_unique<SQLite_Place>(); }});
  site.given_a_trigger_at_work();
  site.foreign_program().execute("CREATE TRIGGER meddling AFTER INSERT ON " + when + " BEGIN " +
                                 meddling + "; END");
  Pass_Scope pass(site.database(), Site_At_Work::server_id);
  const auto repository = make_repository(site.database());

  const std::string found = complaint_of([&] { Site_At_Work::work_on_camera(*repository, 9, 11); });

  EXPECT_EQ(pass.fault(), found);
  EXPECT_EQ(complaint_of([&] { repository->eta_cameras().get_all(); }), found);
  EXPECT_EQ(complaint_of([&] { pass.end(); }), "no complaint");  // the pass is committed by then
  EXPECT_GT(site.foreign_program().count("trigger_record"), 1U);
  return found;
}

TEST(SQLite_Self_Checks, find_what_was_not_stored_as_it_was_given) {
#ifdef NDEBUG
  GTEST_SKIP() << "this build has no self-check";
#endif
  const std::string differ = "the index of the pass and the database differ: ";
  EXPECT_EQ(found_by_self_check("trigger_record",
                                "UPDATE trigger_record SET name = 'x' WHERE id = NEW.id"),
            differ + "trigger 9");
  EXPECT_EQ(found_by_self_check("trigger_record",
                                "INSERT INTO trigger_record (id, name) VALUES (NEW.id + 1, 'x')"),
            differ + "triggers 2");
  EXPECT_EQ(
      found_by_self_check("trigger_source", "DELETE FROM trigger_source WHERE trigger_id = 7"),
      differ + "trigger 7");
  EXPECT_EQ(found_by_self_check("subscription_trigger",
                                "DELETE FROM subscription_trigger WHERE record_id = NEW.record_id"),
            differ + "subscription 2");
  EXPECT_EQ(found_by_self_check("eta_camera_trigger", "DELETE FROM eta_camera_trigger"),
            differ + "detection record 1");
}

// What the engine cannot hold. With its limit lowered, for the real one is a thousand million.

class SQLite_Limits : public SQLite_Faults {
 protected:
  void given_a_limit_of(int bytes) {
    sqlite3_limit(idle_connection(*database()), SQLITE_LIMIT_LENGTH, bytes);
  }

  /// Adds a record of each size in a pass of its own, and answers the sizes that were accepted.
  template <class Add>
  std::vector<std::size_t> accepted_sizes(std::size_t least, std::size_t most, Add add) {
    std::vector<std::size_t> accepted;
    for (std::size_t size = least; size <= most; size += 10) {
      Pass_Scope pass(database(), server_id);
      if (add(*make_repository(database()), size)) {
        accepted.push_back(size);
      }
      EXPECT_EQ(complaint_of([&] { pass.end(); }), "no complaint") << "size " << size;
    }
    return accepted;
  }

  /// Small ones are accepted, large ones are not, and what is accepted is stored.
  void expect_a_limit(const std::vector<std::size_t>& accepted, std::size_t least, std::size_t most,
                      const std::string& stored_sizes) {
    ASSERT_THAT(accepted, testing::Not(IsEmpty()));
    EXPECT_EQ(accepted.front(), least);
    EXPECT_LT(accepted.back(), most);
    std::vector<std::size_t> stored;
    for (const Row& row : foreign_program().query(stored_sizes)) {
      stored.push_back(std::stoul(row.at(0).value()));
    }
    EXPECT_EQ(stored, accepted);
  }
};

TEST_F(SQLite_Limits, refuse_names_of_triggers) {
  given_a_limit_of(2000);

  const auto accepted = accepted_sizes(1500, 2100, [](Repository& repository, std::size_t size) {
    const auto added = a_trigger(size);
    added->name.assign(size, 'x');
    return repository.triggers().add(added);
  });

  expect_a_limit(accepted, 1500, 2100, "SELECT length(name) FROM trigger_record ORDER BY id");
}

TEST_F(SQLite_Limits, refuse_topics_and_object_types_of_triggers) {
  given_a_limit_of(2000);

  const auto topics = accepted_sizes(1500, 2100, [](Repository& repository, std::size_t size) {
    return repository.triggers().add(
        a_trigger(size, {onvif(std::string(size, 'x')),
                         lasting(object_detection("person"), Activity_Duration_Mode::object_track,
                                 std::chrono::hours(8), std::chrono::minutes(10))}));
  });
  const auto types = accepted_sizes(1500, 2100, [](Repository& repository, std::size_t size) {
    return repository.triggers().add(
        a_trigger(largest_id - size, {lasting(object_detection(std::string(size, 'x'), true),
                                              Activity_Duration_Mode::object_track,
                                              std::chrono::hours(8), std::chrono::minutes(10))}));
  });

  expect_a_limit(topics, 1500, 2100,
                 "SELECT length(onvif_topic) FROM trigger_source WHERE onvif_topic IS NOT NULL "
                 "ORDER BY trigger_id");
  expect_a_limit(types, 1500, 2100,
                 "SELECT length(object_type) FROM trigger_source WHERE type = 2 AND trigger_id < 0 "
                 "ORDER BY trigger_id DESC");
}

TEST_F(SQLite_Limits, refuse_topics_of_subscriptions) {
  given_a_limit_of(2000);

  const auto accepted = accepted_sizes(700, 2100, [](Repository& repository, std::size_t size) {
    const auto added = std::make_shared<metadata_event_subscription>();
    added->name.assign(size, 'x');
    added->onvif_topic = added->name;
    added->camera = repository.cameras().get_cameras_matching_tags({}).at(0);
    return repository.metadata_event_subscriptions().add(added);
  });

  expect_a_limit(accepted, 700, 2100,
                 "SELECT length(name) FROM subscription WHERE camera_id IS NOT NULL ORDER BY id");
}

TEST_F(SQLite_Limits, leave_a_trigger_as_it_was_wherever_it_is_held) {
  given_a_trigger_at_work();
  given_a_limit_of(2000);
  const auto repository = make_repository(database());
  const std::string as_it_was =
      "trigger 7 \"trigger 7\" schedules [] sources [type 0 topic \"a\", type 2 object \"person\"]";
  const auto expect_as_it_was = [&] {
    EXPECT_EQ(text_of(repository->triggers().find_by_id(7)), as_it_was);
    const auto watched = repository->eta_cameras().get_by_camera_id(10);
    ASSERT_EQ(watched->triggers.size(), 1U);
    EXPECT_EQ(text_of(*watched->triggers.begin()), as_it_was);
    const auto served = repository->metadata_event_subscriptions().get_stale({4711}).at(0);
    ASSERT_EQ(served->trigger_links.size(), 1U);
    EXPECT_EQ(text_of(*served->trigger_links.front().get()), as_it_was);
  };
  {
    Pass_Scope pass(database(), server_id);
    expect_as_it_was();
    const auto changed = repository->triggers().find_by_id(7);
    changed->name.assign(3000, 'x');
    changed->sources = {object_detection("car")};

    EXPECT_FALSE(repository->triggers().update(changed));

    expect_as_it_was();
    EXPECT_TRUE(repository->triggers().add(a_trigger(9)));
    pass.end();
    EXPECT_THAT(pass.changes().triggers.updated, IsEmpty());
  }
  close();
  const auto reopened = make_repository(database());
  EXPECT_EQ(text_of(reopened->triggers().find_by_id(7)), as_it_was);
  EXPECT_NE(reopened->triggers().find_by_id(9), nullptr);
}

// What is written, row by row.

class SQLite_Rows : public SQLite_Faults {
 protected:
  /// A pass that writes anything writes this row too.
  static constexpr std::int64_t entry_of_history = 1;

  /// The rows that a pass with that work in it writes.
  std::int64_t rows_written_by(const std::function<void(Repository&)>& work) {
    sqlite3* const connection = idle_connection(*database());
    const std::int64_t before = rows_written(connection);
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    work(*repository);
    repository->eta_cameras().delete_stale();
    pass.end();
    return rows_written(connection) - before;
  }

  std::string version() {
    return foreign_program().query("PRAGMA data_version").at(0).at(0).value();
  }
};

TEST_F(SQLite_Rows, are_one_for_a_trigger_that_joins_a_thousand_others) {
  given_a_trigger_at_work();
  rows_written_by([](Repository& repository) {
    const auto shared = repository.metadata_event_subscriptions().get_stale({4711}).at(0);
    for (std::uint64_t id = 1000; id < 2000; ++id) {
      const auto added = a_trigger(id);
      EXPECT_TRUE(repository.triggers().add(added));
      shared->add_trigger(added);
    }
    EXPECT_TRUE(repository.triggers().add(a_trigger(2000)));
    EXPECT_TRUE(repository.metadata_event_subscriptions().update(shared));
  });
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 1001U);

  // The camera of the subscription is noted as pending already.
  EXPECT_EQ(rows_written_by([](Repository& repository) {
              const auto shared = repository.metadata_event_subscriptions().get_stale({4711}).at(0);
              shared->add_trigger(repository.triggers().find_by_id(2000));
              EXPECT_TRUE(repository.metadata_event_subscriptions().update(shared));
            }),
            1 + entry_of_history);
  EXPECT_EQ(rows_written_by([](Repository& repository) {
              const auto shared = repository.metadata_event_subscriptions().get_stale({4711}).at(0);
              shared->remove_trigger(repository.triggers().find_by_id(1500));
              EXPECT_TRUE(repository.metadata_event_subscriptions().update(shared));
            }),
            1 + entry_of_history);
}

TEST_F(SQLite_Rows, are_none_for_a_link_that_went_and_came_back) {
  given_a_trigger_at_work();
  const std::string before = version();

  EXPECT_EQ(rows_written_by([](Repository& repository) {
              const auto leaving = repository.triggers().find_by_id(7);
              const auto served = repository.metadata_event_subscriptions().get_stale({1}).at(0);
              served->remove_trigger(leaving);
              EXPECT_TRUE(repository.metadata_event_subscriptions().update(served));
              const auto watched = repository.eta_cameras().get_by_camera_id(10);
              watched->remove_trigger(leaving);
              EXPECT_TRUE(repository.eta_cameras().update(watched));
              served->add_trigger(leaving);
              EXPECT_TRUE(repository.metadata_event_subscriptions().update(served));
              watched->add_trigger(leaving);
              EXPECT_TRUE(repository.eta_cameras().update(watched));
            }),
            0);
  EXPECT_EQ(version(), before);
}

TEST_F(SQLite_Rows, are_none_for_records_that_are_stored_unchanged) {
  given_a_trigger_at_work();
  const std::string before = version();

  EXPECT_EQ(rows_written_by([](Repository& repository) {
              EXPECT_TRUE(repository.triggers().update(repository.triggers().find_by_id(7)));
              for (const auto& record : repository.metadata_event_subscriptions().get_stale({})) {
                EXPECT_TRUE(repository.metadata_event_subscriptions().update(record));
              }
              for (const auto& record : repository.eta_cameras().get_all()) {
                EXPECT_TRUE(repository.eta_cameras().update(record));
              }
              repository.triggers().delete_all_except({7});
              repository.metadata_event_subscriptions().delete_stale();
            }),
            0);
  EXPECT_EQ(version(), before);
}

TEST_F(SQLite_Rows, are_the_changed_ones_of_a_trigger) {
  given_a_trigger_at_work();

  EXPECT_EQ(rows_written_by([](Repository& repository) {
              const auto changed = repository.triggers().find_by_id(7);
              changed->name = "renamed";
              EXPECT_TRUE(repository.triggers().update(changed));
            }),
            1 + entry_of_history);
  EXPECT_EQ(rows_written_by([](Repository& repository) {
              const auto changed = repository.triggers().find_by_id(7);
              changed->schedules = {{repository.schedules().get_by_id(1)}};
              EXPECT_TRUE(repository.triggers().update(changed));
            }),
            1 + entry_of_history);
}

}  // namespace
}  // namespace kuv::test
