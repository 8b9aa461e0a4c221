// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <filesystem>
#include <functional>

#include "embedded_server/persistent/site_at_work.h"
#include "embedded_server/persistent/watched_files.h"

namespace kuv::test {
namespace {

/// Commits on disks that fail. What is said of them is held against what whoever comes next finds:
/// this process's own connections, and another process after this one died.
class SQLite_Commits : public testing::Test, public Site_At_Work {
 protected:
  SQLite_Commits() : Site_At_Work({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {}

  /// What a table holds for another process when this one dies now: it has the files alone, and
  /// takes from the log what is whole there.
  std::size_t count_after_death(const std::string& table) {
    SQLite_Place other;
    for (const char* const file : {"", "-wal"}) {
      std::filesystem::copy_file(location() + file, other.location() + file);
    }
    return other.foreign_program()->count(table);
  }

  Watched_Files files;
};

TEST_F(SQLite_Commits, of_passes_are_not_known_as_long_as_the_log_cannot_be_cut) {
  given_a_trigger_at_work();
  const auto before = stored();
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    files.fail_syncs();

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }),
              prefixed("disk I/O error"));

    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              prefixed("disk I/O error; it is not known whether what the pass wrote was kept"));
    EXPECT_EQ(pass.changes().triggers.added, std::vector<std::uint64_t>());
    EXPECT_EQ(stored(), before);                         // no
    EXPECT_EQ(count_after_death("trigger_record"), 2U);  // yes
  }
  files.heal();
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Commits, of_passes_that_come_after_others_leave_those_as_they_are) {
  given_a_trigger_at_work();
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  work_on_camera(*repository, 9, 11);
  ASSERT_TRUE(repository->triggers().add(a_trigger(10)));
  files.fail_syncs();

  EXPECT_EQ(complaint_of([&] { pass.end(); }),
            prefixed("disk I/O error; it is not known whether what the pass wrote after its last "
                     "commit was kept"));

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
  EXPECT_EQ(count_after_death("trigger_record"), 3U);
}

TEST_F(SQLite_Commits, of_passes_are_known_to_be_lost_once_the_log_is_cut) {
  given_a_trigger_at_work();
  const auto before = stored();
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    files.fail_syncs(1);

    EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }),
              prefixed("disk I/O error"));

    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              prefixed("disk I/O error; nothing that the pass wrote was kept"));
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(count_after_death("trigger_record"), 1U);
  }
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Commits, of_passes_stay_unknown_while_a_reader_keeps_the_log_from_being_cut) {
  given_a_trigger_at_work();
  const auto impatient = open_again(std::chrono::milliseconds(20));
  {
    Pass_Scope pass(impatient, server_id);
    foreign_program().execute("BEGIN");
    ASSERT_EQ(foreign_program().count("trigger_record"), 1U);
    files.fail_syncs(1);

    EXPECT_EQ(complaint_of([&] { work_on_camera(*make_repository(impatient), 9, 11); }),
              prefixed("disk I/O error"));

    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              prefixed("disk I/O error; it is not known whether what the pass wrote was kept"));
    foreign_program().execute("ROLLBACK");
    EXPECT_EQ(count_after_death("trigger_record"), 2U);
  }
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Commits, of_documents_are_not_known_as_long_as_the_log_cannot_be_cut) {
  given_a_trigger_at_work();
  foreign_program().execute("DELETE FROM document");
  Pass_Scope pass(database(), server_id);
  pass.end();
  files.fail_syncs();

  EXPECT_EQ(complaint_of([&] {
              pass.store({"{ }", std::nullopt}, {});
            }),
            prefixed("disk I/O error; it is not known whether the documents were stored"));

  EXPECT_EQ(foreign_program().count("document"), 0U);
  EXPECT_EQ(count_after_death("document"), 1U);
}

TEST_F(SQLite_Commits, of_documents_are_known_to_be_lost_once_the_log_is_cut) {
  given_a_trigger_at_work();
  foreign_program().execute("DELETE FROM document");
  Pass_Scope pass(database(), server_id);
  pass.end();
  files.fail_syncs(1);

  EXPECT_EQ(complaint_of([&] {
              pass.store({"{ }", std::nullopt}, {});
            }),
            prefixed("disk I/O error"));

  EXPECT_EQ(foreign_program().count("document"), 0U);
  EXPECT_EQ(count_after_death("document"), 0U);
}

TEST_F(SQLite_Commits, of_an_inventory_are_not_known_as_long_as_the_log_cannot_be_cut) {
  database();
  site.given_camera(12);
  files.fail_syncs();

  EXPECT_EQ(complaint_of([this] { site.store_in(database()); }),
            prefixed("disk I/O error; it is not known whether what was written was kept"));

  EXPECT_EQ(foreign_program().count("camera"), 2U);
  EXPECT_EQ(count_after_death("camera"), 3U);
  files.heal();
  site.store_in(database());
  EXPECT_EQ(foreign_program().count("camera"), 3U);
}

TEST_F(SQLite_Commits, of_an_inventory_are_known_to_be_lost_once_the_log_is_cut) {
  database();
  site.given_camera(12);
  files.fail_syncs(1);

  EXPECT_EQ(complaint_of([this] { site.store_in(database()); }), prefixed("disk I/O error"));

  EXPECT_EQ(foreign_program().count("camera"), 2U);
  EXPECT_EQ(count_after_death("camera"), 2U);
}

TEST_F(SQLite_Commits, of_a_new_database_are_not_known_as_long_as_the_log_cannot_be_cut) {
  SQLite_Program(location()).execute("PRAGMA journal_mode=WAL");
  files.fail_syncs();

  EXPECT_EQ(
      complaint_of([this] { Database::open(location(), Database::Open_Mode::create_if_absent); }),
      prefixed("disk I/O error; it is not known whether its tables were made"));

  files.heal();
  database();
  EXPECT_EQ(foreign_program().count("camera"), 2U);
}

}  // namespace
}  // namespace kuv::test
