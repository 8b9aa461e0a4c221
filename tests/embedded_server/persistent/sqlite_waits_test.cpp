// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <chrono>
#include <functional>
#include <future>
#include <regex>

#include "embedded_server/persistent/site_at_work.h"
#include "embedded_server/persistent/watched_files.h"

namespace kuv::test {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;

/// What is done while another program keeps an SQLite file locked.
class SQLite_Waits : public testing::Test, public Site_At_Work {
 protected:
  SQLite_Waits() : Site_At_Work({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {}

  /// What an action complains about that begins when a lock is held, which is let go of once the
  /// action has asked for it, was refused and asked again: what does not wait never gets there.
  std::string complaint_when_refused(const std::function<void()>& action,
                                     const std::function<void()>& let_go) {
    const int before = files_.refusals();
    auto complaint = std::async(std::launch::async, complaint_of, action);
    while (complaint.wait_for(1ms) != std::future_status::ready && files_.refusals() < before + 2) {
    }
    EXPECT_NE(complaint.wait_for(0ms), std::future_status::ready) << "it did not wait";
    let_go();
    return complaint.get();
  }

  /// The same of the lock that only writers need, with nothing written by the other program.
  std::string complaint_when_others_write(const std::function<void()>& action) {
    foreign_program().execute("BEGIN IMMEDIATE");
    return complaint_when_refused(action, [this] { foreign_program().execute("ROLLBACK"); });
  }

  /// How long a complaint says that it waited; what else it says must be that.
  int waited_ms(const std::string& complaint, const std::string& behind = "") {
    std::smatch found;
    const std::regex expected(
        prefixed("another program keeps the database locked; gave up after ([0-9]+) ms") + behind);
    EXPECT_TRUE(std::regex_match(complaint, found, expected)) << complaint;
    return found.empty() ? -1 : std::stoi(found[1]);
  }

  Watched_Files& files() { return files_; }

 private:
  Watched_Files files_;
};

TEST_F(SQLite_Waits, of_a_pass_end_with_its_commit) {
  given_a_trigger_at_work();

  EXPECT_EQ(complaint_when_others_write([this] {
              Pass_Scope pass(database(), server_id);
              work_on_camera(*make_repository(database()), 9, 11);
              pass.end();
              EXPECT_EQ(pass.changes().triggers.added, std::vector<std::uint64_t>{9});
            }),
            "no complaint");

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

TEST_F(SQLite_Waits, of_a_pass_that_failed_end_with_what_it_had_done) {
  given_a_trigger_at_work();
  foreign_program().execute("ALTER TABLE camera_tag RENAME TO elsewhere");

  EXPECT_EQ(complaint_when_others_write([this] {
              Pass_Scope pass(database(), server_id);
              const auto repository = make_repository(database());
              EXPECT_TRUE(repository->triggers().add(a_trigger(9)));
              EXPECT_THROW(repository->cameras().get_cameras_matching_tags({}), Database_Error);
              pass.end();
            }),
            "no complaint");

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

TEST_F(SQLite_Waits, of_the_storing_of_documents_end_with_it) {
  given_a_trigger_at_work();

  EXPECT_EQ(complaint_when_refused(
                [this] {
                  Pass_Scope pass(database(), server_id);
                  pass.end();
                  foreign_program().execute("BEGIN IMMEDIATE");
                  pass.store({"{ }", std::nullopt}, {});
                },
                [this] { foreign_program().execute("ROLLBACK"); }),
            "no complaint");

  EXPECT_EQ(read_documents(database()).config, "{ }");
}

TEST_F(SQLite_Waits, of_an_inventory_end_with_its_storing) {
  given_a_trigger_at_work();
  site.given_camera(12);

  EXPECT_EQ(complaint_when_others_write([this] { site.store_in(database()); }), "no complaint");

  EXPECT_EQ(foreign_program().count("camera"), 3U);
}

TEST_F(SQLite_Waits, of_single_operations_end_with_what_they_write) {
  database();
  const auto repository = make_repository(database());

  EXPECT_EQ(
      complaint_when_others_write([&] { EXPECT_TRUE(repository->triggers().add(a_trigger(7))); }),
      "no complaint");

  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
}

/// Single operations read when they write, and so they wait before they read.
TEST_F(SQLite_Waits, of_single_operations_end_with_what_the_other_program_wrote) {
  database();
  const auto repository = make_repository(database());
  foreign_program().execute("BEGIN IMMEDIATE");
  foreign_program().execute("INSERT INTO trigger_record (id, name) VALUES (7, 'theirs')");

  EXPECT_EQ(complaint_when_refused([&] { EXPECT_FALSE(repository->triggers().add(a_trigger(7))); },
                                   [this] { foreign_program().execute("COMMIT"); }),
            "no complaint");
}

TEST_F(SQLite_Waits, of_a_new_database_end_with_its_tables) {
  SQLite_Program other(location());
  other.execute("BEGIN EXCLUSIVE");

  EXPECT_EQ(complaint_when_refused(
                [this] { Database::open(location(), Database::Open_Mode::create_if_absent); },
                [&other] { other.execute("ROLLBACK"); }),
            "no complaint");

  EXPECT_EQ(foreign_program().count("site"), 1U);
}

TEST_F(SQLite_Waits, of_a_new_database_end_with_its_tables_where_others_may_read_it) {
  SQLite_Program other(location());
  other.execute("PRAGMA journal_mode=WAL");
  other.execute("BEGIN IMMEDIATE");

  EXPECT_EQ(complaint_when_refused(
                [this] { Database::open(location(), Database::Open_Mode::create_if_absent); },
                [&other] { other.execute("ROLLBACK"); }),
            "no complaint");
}

/// A program that keeps readers out too.
TEST_F(SQLite_Waits, of_readers_end_when_they_are_let_in) {
  given_a_trigger_at_work();
  close();
  auto other = std::make_unique<SQLite_Program>(location());
  other->execute("PRAGMA locking_mode=EXCLUSIVE");
  other->execute("BEGIN IMMEDIATE");

  EXPECT_EQ(complaint_when_refused([this] { EXPECT_EQ(read_triggers(open_again()).size(), 1U); },
                                   [&other] { other.reset(); }),
            "no complaint");
}

TEST_F(SQLite_Waits, are_bounded_and_told_as_long_as_they_were) {
  given_a_trigger_at_work();
  const auto before = stored();
  const auto impatient = open_again(30ms);
  const auto begin = std::chrono::steady_clock::now();
  foreign_program().execute("BEGIN IMMEDIATE");
  std::vector<int> told;
  {
    Pass_Scope pass(impatient, server_id);
    told.push_back(
        waited_ms(complaint_of([&] { work_on_camera(*make_repository(impatient), 9, 11); })));
    EXPECT_THAT(complaint_of([&] { pass.end(); }),
                EndsWith("; nothing that the pass wrote was kept"));
  }
  told.push_back(waited_ms(complaint_of([&] { site.store_in(impatient); })));
  told.push_back(
      waited_ms(complaint_of([&] { make_repository(impatient)->triggers().add(a_trigger(9)); })));
  foreign_program().execute("ROLLBACK");
  const auto all = std::chrono::steady_clock::now() - begin;

  for (const int waited : told) {
    EXPECT_GE(waited, 30);
    EXPECT_LE(std::chrono::milliseconds(waited), all);
  }
  EXPECT_EQ(stored(), before);
}

TEST_F(SQLite_Waits, of_readers_are_bounded_and_told_as_long_as_they_were) {
  given_a_trigger_at_work();
  close();
  SQLite_Program other(location());
  other.execute("PRAGMA locking_mode=EXCLUSIVE");
  other.execute("BEGIN IMMEDIATE");
  const auto begin = std::chrono::steady_clock::now();

  const int waited = waited_ms(complaint_of([this] { open_again(30ms); }));

  EXPECT_GE(waited, 30);
  EXPECT_LE(std::chrono::milliseconds(waited), std::chrono::steady_clock::now() - begin);
}

TEST_F(SQLite_Waits, for_a_program_that_writes_meanwhile_end_with_that) {
  given_a_trigger_at_work();
  foreign_program().execute("BEGIN IMMEDIATE");
  foreign_program().execute("UPDATE camera SET name = 'by another program'");
  const std::string fault = prefixed("another program changed the database meanwhile");

  EXPECT_EQ(complaint_when_refused(
                [&] {
                  Pass_Scope pass(database(), server_id);
                  EXPECT_EQ(
                      complaint_of([this] { work_on_camera(*make_repository(database()), 9, 11); }),
                      fault);
                  pass.end();
                },
                [this] { foreign_program().execute("COMMIT"); }),
            fault + "; nothing that the pass wrote was kept");

  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  expect_the_next_pass_to_work();
}

TEST_F(SQLite_Waits, are_none_for_who_only_reads) {
  given_a_trigger_at_work();
  foreign_program().execute("BEGIN IMMEDIATE");
  const int before = files().refusals();
  const auto impatient = open_again(0ms);
  EXPECT_EQ(read_triggers(impatient).size(), 1U);
  Pass_Scope pass(impatient, server_id, Pass_Scope::Mode::read_only);
  EXPECT_NE(make_repository(impatient)->triggers().find_by_id(7), nullptr);
  EXPECT_EQ(pass.documents().config, "{}");
  EXPECT_EQ(files().refusals(), before);
}

TEST_F(SQLite_Waits, are_none_for_a_pass_that_changes_nothing) {
  given_a_trigger_at_work();
  foreign_program().execute("BEGIN IMMEDIATE");
  const int before = files().refusals();
  const auto impatient = open_again(0ms);
  Pass_Scope pass(impatient, server_id);
  const auto repository = make_repository(impatient);
  EXPECT_TRUE(repository->triggers().update(repository->triggers().find_by_id(7)));
  repository->metadata_event_subscriptions().delete_stale();
  repository->eta_cameras().delete_stale();
  pass.end();
  pass.store({"{}", "{}"}, pass.pending_cameras());
  EXPECT_EQ(files().refusals(), before);
}

/// As a copy has it that SQLite's own shell made. Setting the other mode writes to the file.
TEST_F(SQLite_Waits, are_none_for_who_only_reads_a_file_without_a_log) {
  given_a_trigger_at_work();
  close();
  foreign_program().execute("PRAGMA journal_mode=DELETE");
  foreign_program().execute("BEGIN IMMEDIATE");

  EXPECT_EQ(complaint_of([this] { EXPECT_EQ(read_triggers(open_again(0ms)).size(), 1U); }),
            "no complaint");

  foreign_program().execute("ROLLBACK");
  EXPECT_EQ(SQLite_Program(location()).query("PRAGMA journal_mode"), (Rows{{"delete"}}));
  expect_the_next_pass_to_work();
  EXPECT_EQ(SQLite_Program(location()).query("PRAGMA journal_mode"), (Rows{{"wal"}}));
}

/// Without a log, a commit waits for readers.
TEST_F(SQLite_Waits, of_a_commit_end_with_it_on_files_without_shared_memory) {
  files().forbid_shared_memory();
  given_a_trigger_at_work();
  ASSERT_EQ(foreign_program().query("PRAGMA journal_mode"), (Rows{{"delete"}}));
  foreign_program().execute("BEGIN");
  ASSERT_EQ(foreign_program().count("trigger_record"), 1U);

  EXPECT_EQ(
      complaint_when_refused([this] { make_repository(database())->triggers().add(a_trigger(9)); },
                             [this] { foreign_program().execute("ROLLBACK"); }),
      "no complaint");

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

TEST_F(SQLite_Waits, of_a_commit_that_end_in_vain_leave_nothing_of_it) {
  files().forbid_shared_memory();
  given_a_trigger_at_work();
  {
    const auto impatient = open_again(30ms);
    foreign_program().execute("BEGIN");
    ASSERT_EQ(foreign_program().count("trigger_record"), 1U);
    Pass_Scope pass(impatient, server_id);
    const std::string complaint =
        complaint_of([&] { work_on_camera(*make_repository(impatient), 9, 11); });
    EXPECT_GE(waited_ms(complaint), 30);
    EXPECT_EQ(complaint_of([&] { pass.end(); }),
              complaint + "; nothing that the pass wrote was kept");
    foreign_program().execute("ROLLBACK");
  }
  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  expect_the_next_pass_to_work();
}

}  // namespace
}  // namespace kuv::test
