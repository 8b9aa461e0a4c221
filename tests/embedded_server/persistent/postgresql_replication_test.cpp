// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <future>
#include <thread>

#include "embedded_server/persistent/site_at_work.h"
#include "vemora/embedded_server/persistent/inventory.h"

namespace kuv::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::MatchesRegex;

/// The cluster of the tests replicates synchronously to a standby that is never there. A connection
/// that asks for it waits for that standby with each commit.
class PostgreSQL_Replication : public testing::Test, public Site_At_Work {
 protected:
  PostgreSQL_Replication() : Site_At_Work(postgresql_engine()) {}

  std::shared_ptr<Database> open_waiting(Database::Open_Mode mode = Database::Open_Mode::existing,
                                         std::chrono::milliseconds lock_wait = 30s) {
    return Database::open(location() + "&options=-c%20synchronous_commit%3Don", mode, lock_wait);
  }

  std::string schema() const { return location().substr(location().rfind('=') + 1); }

  /// Calls a function of the server with the connection of this site that waits for the standby, as
  /// soon as one does.
  std::future<bool> once_a_commit_waits(const std::string& function) {
    const std::string act = fmt::format(
        "SELECT {}(pid) FROM pg_stat_activity WHERE wait_event = 'SyncRep' AND pid IN (SELECT pid "
        "FROM pg_locks WHERE locktype = 'advisory' AND (classid::bigint << 32 | objid::bigint) = "
        "hashtextextended('vemora {}', 0))",
        function, schema());
    return std::async(std::launch::async, [act] {
      PostgreSQL_Program program("public");
      for (int look = 0; look < 10'000; ++look) {
        if (!program.query(act).empty()) {
          return true;
        }
        std::this_thread::sleep_for(5ms);
      }
      return false;
    });
  }

  void execute_amid_each_commit(const std::string& statement) {
    foreign_program().execute(
        fmt::format("CREATE FUNCTION meddle() RETURNS trigger LANGUAGE plpgsql AS "
                    "$$BEGIN {}; RETURN NULL; END$$; "
                    "CREATE CONSTRAINT TRIGGER trouble AFTER INSERT OR UPDATE ON trigger_record "
                    "DEFERRABLE INITIALLY DEFERRED FOR EACH ROW EXECUTE FUNCTION meddle()",
                    statement));
  }

  /// A pass that changes something fails with its commit; answers what it says then and at its end.
  std::pair<std::string, std::string> complaints_of_a_pass(
      const std::shared_ptr<Database>& replicated) {
    const auto repository = make_repository(replicated);
    Pass_Scope pass(replicated, server_id);
    const std::string fault = complaint_of([&] { work_on_camera(*repository, 9, 11); });
    const std::string at_its_end = complaint_of([&] { pass.end(); });
    EXPECT_EQ(pass.fault(), fault);
    EXPECT_EQ(pass.changes().triggers.added, std::vector<std::uint64_t>{9});
    return {fault, at_its_end};
  }

  static constexpr const char* here =
      "; what the pass wrote is committed on this server, and it is not known whether a standby "
      "has it";
};

TEST_F(PostgreSQL_Replication, that_is_given_up_by_another_is_told) {
  given_a_trigger_at_work();
  auto cancelled = once_a_commit_waits("pg_cancel_backend");

  const auto [fault, at_its_end] = complaints_of_a_pass(open_waiting());

  EXPECT_TRUE(cancelled.get());
  EXPECT_THAT(fault,
              MatchesRegex(".*: the commit's wait for a standby was cancelled after [0-9]+ ms"));
  EXPECT_EQ(at_its_end, fault + here);
  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
  EXPECT_EQ(foreign_program().query("SELECT camera_id FROM pending_camera"), (Rows{{"11"}}));
}

TEST_F(PostgreSQL_Replication, that_the_server_gives_up_with_the_connection_is_told) {
  given_a_trigger_at_work();
  auto ended = once_a_commit_waits("pg_terminate_backend");

  const auto [fault, at_its_end] = complaints_of_a_pass(open_waiting());

  EXPECT_TRUE(ended.get());
  EXPECT_EQ(fault,
            prefixed("the server ended the connection while the commit waited for a standby"));
  EXPECT_EQ(at_its_end, fault + here);
  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

TEST_F(PostgreSQL_Replication, is_waited_for_in_a_bounded_time) {
  given_a_trigger_at_work();
  const auto begin = std::chrono::steady_clock::now();

  const auto [fault, at_its_end] =
      complaints_of_a_pass(open_waiting(Database::Open_Mode::existing, 1200ms));

  EXPECT_GE(std::chrono::steady_clock::now() - begin, 1200ms);
  EXPECT_THAT(fault, MatchesRegex(".*: no standby confirmed the commit; gave up after "
                                  "(1[2-9][0-9]{2}|[2-9][0-9]{3}|[0-9]{5,}) ms"));
  EXPECT_EQ(at_its_end, fault + here);
  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
}

TEST_F(PostgreSQL_Replication, leaves_the_next_pass_alone) {
  given_a_trigger_at_work();
  {
    auto cancelled = once_a_commit_waits("pg_cancel_backend");
    const auto replicated = open_waiting();
    const auto repository = make_repository(replicated);
    Pass_Scope pass(replicated, server_id);
    EXPECT_THAT(complaint_of([&] { work_on_camera(*repository, 8, 11); }), HasSubstr("standby"));
    EXPECT_TRUE(cancelled.get());
  }
  Pass_Scope pass(database(), server_id);
  EXPECT_EQ(read_triggers(database()).size(), 2U);
  EXPECT_EQ(pass.pending_cameras(), (std::set<std::uint64_t>{11}));
}

TEST_F(PostgreSQL_Replication, of_documents_that_is_given_up_is_told) {
  given_a_trigger_at_work();
  {
    Pass_Scope pass(open_waiting(), server_id);
    pass.end();
    auto cancelled = once_a_commit_waits("pg_cancel_backend");

    EXPECT_THAT(complaint_of([&] {
                  pass.store({"{ }", std::nullopt}, {});
                }),
                MatchesRegex(".*: the commit's wait for a standby was cancelled after [0-9]+ ms; "
                             "the documents are stored on this server, and it is not known whether "
                             "a standby has them"));

    EXPECT_TRUE(cancelled.get());
  }
  EXPECT_EQ(read_documents(database()).config, "{ }");
}

TEST_F(PostgreSQL_Replication, of_an_inventory_that_is_given_up_is_told) {
  given_a_trigger_at_work();
  auto cancelled = once_a_commit_waits("pg_cancel_backend");
  Inventory inventory;
  inventory.schedules = {{77, "new", true}};

  EXPECT_THAT(
      complaint_of([&] { store_inventory(open_waiting(), inventory); }),
      MatchesRegex(".*: the commit's wait for a standby was cancelled after [0-9]+ ms; what "
                   "was written is committed on this server, and it is not known whether a "
                   "standby has it"));

  EXPECT_TRUE(cancelled.get());
  EXPECT_EQ(foreign_program().count("schedule"), 2U);
}

TEST_F(PostgreSQL_Replication, of_a_new_schema_that_is_given_up_is_told) {
  auto cancelled = once_a_commit_waits("pg_cancel_backend");

  EXPECT_THAT(complaint_of([&] { open_waiting(Database::Open_Mode::create_if_absent); }),
              MatchesRegex(".*: the commit's wait for a standby was cancelled after [0-9]+ ms; its "
                           "tables are made on this server, and it is not known whether a "
                           "standby has them"));

  EXPECT_TRUE(cancelled.get());
  EXPECT_EQ(PostgreSQL_Program(schema()).count("site"), 1U);
}

TEST_F(PostgreSQL_Replication, is_not_what_other_warnings_are_about) {
  given_a_trigger_at_work();
  execute_amid_each_commit("RAISE WARNING 'canceling wait for synchronous replication'");

  expect_the_next_pass_to_work();
}

TEST_F(PostgreSQL_Replication, is_not_what_a_slow_commit_waits_for) {
  given_a_trigger_at_work();
  execute_amid_each_commit("PERFORM pg_sleep(2)");
  const auto impatient = open_again(10ms);
  const auto repository = make_repository(impatient);
  Pass_Scope pass(impatient, server_id);

  EXPECT_EQ(complaint_of([&] { work_on_camera(*repository, 9, 11); }), "no complaint");
  pass.end();
  EXPECT_EQ(pass.fault(), std::nullopt);
}

}  // namespace
}  // namespace kuv::test
