// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <future>
#include <thread>

#include "embedded_server/persistent/database_test.h"
#include "embedded_server/persistent/other_process.h"
#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::test {
namespace {

using namespace std::chrono_literals;

class Other_Processes : public Database_Test {
 protected:
  std::unique_ptr<Other_Process> another_process(std::chrono::milliseconds lock_wait = 30s) {
    database();
    return std::make_unique<Other_Process>(location(), lock_wait);
  }

  std::string at_work(int waited_ms) const {
    return "database " + location() + ": another process is at work on it; gave up after " +
           std::to_string(waited_ms) + " ms";
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Other_Processes, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Other_Processes, are_kept_out_of_a_pass) {
  const auto other = another_process(0ms);
  {
    const Pass_Scope pass(database(), server_id);
    EXPECT_EQ(other->ask("begin"), at_work(0));
    EXPECT_EQ(other->ask("add 7"), at_work(0));
    EXPECT_EQ(other->ask("init"), at_work(0));
    EXPECT_EQ(other->ask("find 7"), "nothing");
  }

  EXPECT_EQ(other->ask("begin"), "done");
  EXPECT_EQ(other->ask("add 7"), "done");
}

TEST_P(Other_Processes, keep_passes_out_for_a_bounded_time) {
  const auto other = another_process();
  ASSERT_EQ(other->ask("begin"), "done");
  const auto impatient = open_again(30ms);
  const auto complaint = [&](const auto& action) -> std::string {
    try {
      action();
    } catch (const Database_Error& error) {
      return error.what();
    }
    return "none";
  };

  EXPECT_EQ(complaint([&] { Pass_Scope(impatient, server_id); }), at_work(30));
  EXPECT_EQ(complaint([&] { Pass_Scope(impatient, server_id, Pass_Scope::Mode::roll_back); }),
            at_work(30));
  EXPECT_EQ(complaint([&] { site.store_in(impatient); }), at_work(30));
  EXPECT_EQ(complaint([&] { Pass_Scope(impatient, server_id, Pass_Scope::Mode::read_only); }),
            "none");
  ASSERT_EQ(other->ask("let-go"), "done");
  EXPECT_EQ(complaint([&] { Pass_Scope(impatient, server_id); }), "none");
}

TEST_P(Other_Processes, are_waited_for_until_their_documents_are_stored) {
  const auto other = another_process();
  ASSERT_EQ(other->ask("begin"), "done");
  auto waiting = std::async(std::launch::async, [database = open_again()] {
    return Pass_Scope(database, server_id).documents().config;
  });

  EXPECT_EQ(other->ask("add 7"), "done");
  EXPECT_EQ(other->ask("clean"), "done");
  EXPECT_EQ(other->ask("end"), "done");
  EXPECT_EQ(other->ask("store latest"), "done");
  EXPECT_EQ(other->ask("let-go"), "done");

  EXPECT_EQ(waiting.get(), "latest");
}

TEST_P(Other_Processes, see_what_was_committed_and_nothing_else) {
  const auto other = another_process();
  const auto repository = make_repository(database());
  Pass_Scope pass(database(), server_id);
  ASSERT_TRUE(repository->triggers().add(a_trigger(7)));
  EXPECT_EQ(other->ask("find 7"), "nothing");

  repository->eta_cameras().delete_stale();

  EXPECT_EQ(other->ask("find 7"), "trigger 7 \"trigger 7\" schedules [] sources []");
}

TEST_P(Other_Processes, that_are_killed_in_a_pass_leave_neither_lock_nor_rows) {
  const auto other = another_process();
  const auto before = foreign_program().everything();
  ASSERT_EQ(other->ask("begin"), "done");
  ASSERT_EQ(other->ask("add 7"), "done");

  other->kill();

  const auto impatient = open_again(0ms);
  const Pass_Scope pass(impatient, server_id);
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Other_Processes, and_threads_take_turns) {
  database();
  std::vector<std::future<void>> workers;
  for (std::uint64_t id = 1; id <= 4; ++id) {
    workers.push_back(std::async(std::launch::async, [this, id] {
      const auto own = open_again();
      const auto repository = make_repository(own);
      for (std::uint64_t round = 0; round < 5; ++round) {
        Pass_Scope pass(own, server_id);
        const std::string so_far = pass.documents().config.value_or("");
        EXPECT_TRUE(repository->triggers().add(a_trigger(id * 100 + round)));
        repository->eta_cameras().delete_stale();
        pass.end();
        pass.store({so_far + "x", std::nullopt}, {});
      }
    }));
  }
  for (std::future<void>& worker : workers) {
    worker.get();
  }

  EXPECT_EQ(read_documents(database()).config, std::string(20, 'x'));
  EXPECT_EQ(read_triggers(database()).size(), 20U);
}

TEST_P(Other_Processes, and_threads_share_one_database_object) {
  const auto repository = make_repository(database());
  std::vector<std::future<void>> workers;
  for (std::uint64_t id = 1; id <= 4; ++id) {
    workers.push_back(std::async(std::launch::async, [this, id, &repository] {
      for (std::uint64_t round = 0; round < 5; ++round) {
        const Pass_Scope pass(database(), server_id);
        EXPECT_TRUE(repository->triggers().add(a_trigger(id * 100 + round)));
        repository->eta_cameras().delete_stale();
      }
    }));
  }
  for (std::future<void>& worker : workers) {
    worker.get();
  }

  EXPECT_EQ(read_triggers(database()).size(), 20U);
}

}  // namespace
}  // namespace kuv::test
