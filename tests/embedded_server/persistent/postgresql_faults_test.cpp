// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include "embedded_server/persistent/site_at_work.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class PostgreSQL_Faults : public testing::Test, public Site_At_Work {
 protected:
  PostgreSQL_Faults() : Site_At_Work(postgresql_engine()) {}

  /// The database as a user opens it whose URL says more.
  std::shared_ptr<Database> open_with(const std::string& parameter,
                                      std::chrono::milliseconds lock_wait) {
    return Database::open(location() + "&" + parameter, Database::Open_Mode::existing, lock_wait);
  }

  /// The server ends the connections of this site; those of tests beside this one go on.
  void cut_all_connections() {
    foreign_program().execute(
        "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE pid <> pg_backend_pid() "
        "AND (query LIKE '%' || current_schema() || '%' OR pid IN (SELECT pid FROM pg_locks WHERE "
        "locktype = 'advisory' AND (classid::bigint << 32 | objid::bigint) = "
        "hashtextextended('vemora ' || current_schema(), 0)))");
  }

  /// The server ends the connection amid the commit of whoever writes to that table.
  void given_that_a_commit_is_not_answered(const std::string& table) {
    foreign_program().execute(
        "CREATE FUNCTION hang_up() RETURNS trigger LANGUAGE plpgsql AS "
        "$$BEGIN PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NULL; END$$; "
        "CREATE CONSTRAINT TRIGGER trouble AFTER INSERT OR UPDATE ON " +
        table + " DEFERRABLE INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION hang_up()");
  }

  static constexpr const char* lost = "; nothing that the pass wrote was kept";
};

TEST_F(PostgreSQL_Faults, stick_to_every_later_call_of_a_pass) {
  given_a_trigger_at_work();
  foreign_program().execute("ALTER TABLE subscription_trigger RENAME TO elsewhere");
  const auto repository = make_repository(database());
  Pass_Scope pass(database(), server_id);
  ASSERT_TRUE(repository->triggers().add(a_trigger(9)));
  const std::string fault =
      complaint_of([&] { repository->metadata_event_subscriptions().get_stale({7}); });
  EXPECT_THAT(fault, StartsWith(prefixed("relation \"subscription_trigger\" does not exist")));

  foreign_program().execute("ALTER TABLE elsewhere RENAME TO subscription_trigger");

  EXPECT_EQ(pass.fault(), fault);
  for (const auto& [name, operate] : all_operations()) {
    EXPECT_EQ(complaint_of([&, &operate = operate] { operate(*repository); }), fault) << name;
  }
  EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
}

TEST_F(PostgreSQL_Faults, of_a_lost_connection_leave_nothing_half_written) {
  given_a_trigger_at_work();
  const auto before = stored();
  const std::string fault = prefixed("the connection to the server was lost");
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    ASSERT_TRUE(repository->triggers().add(a_trigger(9)));
    cut_all_connections();

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 20, 11); }), fault);

    EXPECT_EQ(complaint_of([&] { repository->eta_cameras().get_all(); }), fault);
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
  }
  EXPECT_EQ(stored(), before);
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, of_a_commit_that_is_not_answered_leave_it_open_what_is_stored) {
  given_a_trigger_at_work();
  given_that_a_commit_is_not_answered("trigger_record");
  const std::string fault = prefixed("the connection to the server was lost");
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }), fault);

    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              fault + "; it is not known whether what the pass wrote was kept");
  }
  foreign_program().execute("DROP TRIGGER trouble ON trigger_record");
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, of_a_commit_that_had_nothing_to_keep_leave_nothing_open) {
  given_a_trigger_at_work();
  Pass_Scope pass(database(), server_id);
  ASSERT_EQ(make_repository(database())->eta_cameras().get_all().size(), 1U);
  cut_all_connections();

  EXPECT_EQ(complaint_of([&] { pass.end(); }),
            prefixed("the connection to the server was lost; there was nothing to be written"));

  EXPECT_EQ(pass.kept(), Kept::nothing);
  EXPECT_TRUE(pass.changes_are_known());
}

TEST_F(PostgreSQL_Faults, of_a_question_before_documents_are_stored_say_that_records_are_kept) {
  given_a_trigger_at_work();
  Pass_Scope pass(database(), server_id);
  work_on_camera(*make_repository(database()), 9, 11);
  pass.end();
  cut_all_connections();

  EXPECT_EQ(complaint_of([&] { pass.pending_cameras(); }),
            prefixed("the connection to the server was lost"));

  EXPECT_EQ(pass.kept(), Kept::records);
}

TEST_F(PostgreSQL_Faults, of_the_storing_of_documents_leave_it_open_whether_they_are) {
  given_a_trigger_at_work();
  given_that_a_commit_is_not_answered("document");
  Pass_Scope pass(database(), server_id);
  pass.end();

  EXPECT_EQ(complaint_of([&] {
              pass.store({"{ }", std::nullopt}, {});
            }),
            prefixed("the connection to the server was lost; it is not known whether the documents "
                     "were stored"));
}

TEST_F(PostgreSQL_Faults, of_a_missing_right_leave_nothing_half_written) {
  given_a_trigger_at_work();
  const std::string role = location().substr(location().rfind('=') + 1) + "_reader";
  foreign_program().execute(
      fmt::format("CREATE ROLE {0} LOGIN; GRANT USAGE ON SCHEMA {1} TO {0}; GRANT SELECT ON ALL "
                  "TABLES IN SCHEMA "
                  "{1} TO {0}; GRANT INSERT ON trigger_record TO {0}",
                  role, location().substr(location().rfind('=') + 1)));
  const auto before = stored();
  {
    const auto reader = open_with("user=" + role, std::chrono::seconds(30));
    Pass_Scope pass(reader, server_id);
    const auto repository = make_repository(reader);

    const std::string fault = complaint_of([&] { work_on_camera(*repository, 9, 11); });

    EXPECT_THAT(fault, HasSubstr("permission denied for table trigger_source"));
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
  }
  EXPECT_EQ(stored(), before);
  foreign_program().execute(fmt::format("DROP OWNED BY {0}; DROP ROLE {0}", role));
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, of_a_server_that_takes_no_writes_say_so) {
  given_a_trigger_at_work();
  const auto before = stored();
  {
    const auto standby =
        open_with("options=-c%20default_transaction_read_only%3Don", std::chrono::seconds(30));
    Pass_Scope pass(standby, server_id);
    const auto repository = make_repository(standby);
    EXPECT_EQ(repository->eta_cameras().get_all().size(), 1U);

    const std::string fault = complaint_of([&] { work_on_camera(*repository, 9, 11); });

    EXPECT_THAT(fault, HasSubstr("cannot execute INSERT in a read-only transaction"));
    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
  }
  EXPECT_EQ(stored(), before);
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, tell_of_a_program_that_keeps_a_table_locked) {
  given_a_trigger_at_work();
  const auto before = stored();
  {
    const auto impatient = open_again(std::chrono::milliseconds(20));
    Pass_Scope pass(impatient, server_id);
    const auto repository = make_repository(impatient);
    foreign_program().execute("BEGIN; LOCK TABLE trigger_record IN ACCESS EXCLUSIVE MODE");
    const std::string fault =
        prefixed("another program keeps the database locked; gave up after 20 ms");

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }), fault);

    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
    foreign_program().execute("ROLLBACK");
  }
  EXPECT_EQ(stored(), before);
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, of_a_statement_that_takes_too_long_say_so) {
  given_a_trigger_at_work();
  {
    const auto hurried = open_with("options=-c%20statement_timeout%3D50", std::chrono::seconds(30));
    Pass_Scope pass(hurried, server_id);
    const auto repository = make_repository(hurried);
    foreign_program().execute("BEGIN; LOCK TABLE camera IN ACCESS EXCLUSIVE MODE");

    EXPECT_THAT(complaint_of([&] { repository->cameras().get_cameras_matching_tags({}); }),
                HasSubstr("canceling statement due to statement timeout"));
    foreign_program().execute("ROLLBACK");
  }
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, tell_of_a_program_that_wrote_what_the_pass_writes) {
  given_a_trigger_at_work();
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    const auto changed = repository->triggers().find_by_id(7);
    foreign_program().execute("UPDATE trigger_record SET name = 'by another program'");
    changed->name = "new";
    ASSERT_TRUE(repository->triggers().update(changed));
    const std::string fault = prefixed("another program changed the database meanwhile");

    EXPECT_EQ(complaint_of([&] { repository->eta_cameras().delete_stale(); }), fault);

    EXPECT_EQ(complaint_of([&] { pass.end(); }), fault + lost);
  }
  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Faults, are_none_where_another_program_works_during_a_pass) {
  given_a_trigger_at_work();
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  ASSERT_EQ(repository->cameras().get_cameras_matching_tags({}).size(), 2U);

  foreign_program().execute("UPDATE camera SET name = 'by another program'");

  EXPECT_NE(repository->cameras().get_cameras_matching_tags({}).at(0)->name, "by another program");
  work_on_camera(*repository, 9, 11);
  pass.end();
  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

class Texts_That_PostgreSQL_Cannot_Hold : public PostgreSQL_Faults,
                                          public testing::WithParamInterface<std::string> {};

INSTANTIATE_TEST_SUITE_P(Of, Texts_That_PostgreSQL_Cannot_Hold,
                         testing::Values(std::string("zero\0inside", 11), "\xFF", "cut \xE2\x82",
                                         "long \xC0\x80", "half \xED\xA0\x80",
                                         "beyond \xF4\x90\x80\x80", "alone \x80"),
                         [](const auto& info) { return "kind_" + std::to_string(info.index); });

TEST_P(Texts_That_PostgreSQL_Cannot_Hold, are_refused_and_the_pass_goes_on) {
  given_a_trigger_at_work();
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  auto named = a_trigger(20);
  named->name = GetParam();
  auto renamed = repository->triggers().find_by_id(7);
  renamed->name = GetParam();
  const auto subscription = std::make_shared<metadata_event_subscription>();
  subscription->name = GetParam();
  subscription->onvif_topic = GetParam();
  subscription->camera = repository->cameras().get_cameras_matching_tags({}).at(0);

  EXPECT_FALSE(repository->triggers().add(named));
  EXPECT_FALSE(repository->triggers().add(a_trigger(21, {onvif(GetParam())})));
  EXPECT_FALSE(repository->triggers().add(a_trigger(22, {object_detection(GetParam())})));
  EXPECT_FALSE(repository->triggers().update(renamed));
  EXPECT_FALSE(repository->metadata_event_subscriptions().add(subscription));
  EXPECT_EQ(repository->metadata_event_categories().find_by_name(GetParam()), nullptr);

  work_on_camera(*repository, 9, 11);
  pass.end();
  EXPECT_EQ(pass.fault(), std::nullopt);
  EXPECT_THAT(pass.changes().triggers.added, ElementsAre(9));
  EXPECT_THAT(pass.changes().triggers.updated, IsEmpty());
}

}  // namespace
}  // namespace kuv::test
