// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <algorithm>
#include <atomic>
#include <future>
#include <thread>
#include <vector>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"
#include "trigger_manager/scripted_site.h"

namespace kuv::test {
namespace {

using Answer = Scripted_Site::Answer;
using testing::Each;
using testing::Ge;

/// A document that says twice which one it is: torn apart, it contradicts itself.
Json::Value numbered(Json::Value document, int number) {
  document["first"] = number;
  document["last"] = number;
  return document;
}

/// Which one it is; -1 of one that was torn apart.
int number_of(const Json::Value& document) {
  return document["first"] == document["last"] ? document["first"].asInt() : -1;
}

/// One of the four operations that run a pass, on documents of number 1.
struct Operation {
  const char* name;
  void (*run)(Trigger_Manager&);
  int config_afterwards;
  int mapping_afterwards;
};

const Operation operations[] = {
    {"update_config",
     [](Trigger_Manager& manager) {
       EXPECT_TRUE(manager.update_config(numbered(Scripted_Site::config, 1)).success);
     },
     1, 0},
    {"update_trigger_mapping",
     [](Trigger_Manager& manager) {
       manager.update_trigger_mapping(numbered(Scripted_Site::mapping, 1));
     },
     0, 1},
    {"refresh_triggers", [](Trigger_Manager& manager) { EXPECT_TRUE(manager.refresh_triggers()); },
     0, 0},
    {"refresh_triggers_with_state",
     [](Trigger_Manager& manager) {
       Trigger_Config_State state;
       EXPECT_TRUE(manager.refresh_triggers(state));
     },
     0, 0},
};

class Concurrent_Use : public testing::Test {
 protected:
  boost::shared_mutex& lock() {
    return dynamic_cast<Vemora_Trigger_Manager&>(*manager).*open(Manager_Lock());
  }

  /// Whether a thread of its own could read now.
  bool lock_is_free_for_a_reader() {
    bool free = false;
    std::thread([&] {
      free = lock().try_lock_shared();
      if (free) {
        lock().unlock_shared();
      }
    }).join();
    return free;
  }

  Log_Capture quiet;
  Scripted_Site site;
  std::unique_ptr<Trigger_Manager> manager =
      site.a_manager(numbered(Scripted_Site::config, 0), numbered(Scripted_Site::mapping, 0));
};

// Many threads at once.

/// What one thread read, in order.
struct Readings {
  std::vector<int> configs;
  std::vector<int> mappings;
};

Readings read_until(Trigger_Manager& manager, const std::atomic<bool>& done) {
  Readings readings;
  for (bool last = false; !last;) {
    last = done && readings.configs.size() >= 100;  // asked before it reads: it sees the end
    readings.configs.push_back(number_of(manager.get_config()));
    readings.mappings.push_back(number_of(manager.get_trigger_mapping()));
    std::this_thread::yield();  // readers alone could keep the passes waiting for long
  }
  return readings;
}

/// Learns of the calls of passes and finds calls of one pass within another. Deliberately without
/// a lock of its own.
class Overlap_Finder {
 public:
  Answer operator()(const std::string& call) {
    if (pass_ == std::thread::id()) {
      pass_ = std::this_thread::get_id();
    } else if (pass_ != std::this_thread::get_id()) {
      overlaps_.push_back(call);
    }
    if (call == "push") {
      pass_ = std::thread::id();
      ++passes_;
    }
    return Answer::by_the_script;
  }

  const std::vector<std::string>& overlaps() const { return overlaps_; }
  int passes() const { return passes_; }

 private:
  std::thread::id pass_;
  std::vector<std::string> overlaps_;
  int passes_ = 0;
};

TEST_F(Concurrent_Use, shows_eight_readers_whole_documents_while_passes_run_one_at_a_time) {
  constexpr int passes_each = 25;
  Overlap_Finder finder;
  site.listen([&finder](const std::string& call) { return finder(call); });
  std::atomic<bool> done{false};
  std::vector<std::future<Readings>> readers;
  for (int reader = 0; reader < 8; ++reader) {
    readers.push_back(
        std::async(std::launch::async, read_until, std::ref(*manager), std::cref(done)));
  }

  std::thread configs([this] {
    for (int number = 1; number <= passes_each; ++number) {
      EXPECT_TRUE(manager->update_config(numbered(Scripted_Site::config, number)).success);
    }
  });
  std::thread mappings([this] {
    for (int number = 1; number <= passes_each; ++number) {
      manager->update_trigger_mapping(numbered(Scripted_Site::mapping, number));
    }
  });
  for (int pass = 0; pass < passes_each; ++pass) {
    Trigger_Config_State state;
    EXPECT_TRUE(pass % 2 == 0 ? manager->refresh_triggers() : manager->refresh_triggers(state));
  }
  configs.join();
  mappings.join();
  done = true;

  for (std::future<Readings>& reader : readers) {
    const Readings readings = reader.get();
    EXPECT_THAT(readings.configs, Each(Ge(0)));
    EXPECT_THAT(readings.mappings, Each(Ge(0)));
    EXPECT_TRUE(std::is_sorted(readings.configs.begin(), readings.configs.end()));
    EXPECT_TRUE(std::is_sorted(readings.mappings.begin(), readings.mappings.end()));
    EXPECT_EQ(readings.configs.back(), passes_each);
    EXPECT_EQ(readings.mappings.back(), passes_each);
  }
  EXPECT_THAT(finder.overlaps(), testing::IsEmpty());
  EXPECT_EQ(finder.passes(), 3 * passes_each);
}

// One pass and one other thread, in an order that the test sets.

class Concurrent_Use_During : public Concurrent_Use,
                              public testing::WithParamInterface<Operation> {};

TEST_P(Concurrent_Use_During, finds_the_lock_taken_in_every_call_that_the_pass_makes) {
  std::vector<std::string> calls;
  std::vector<std::string> calls_without_lock;
  site.listen([&](const std::string& call) {
    calls.push_back(call);
    if (lock_is_free_for_a_reader()) {
      calls_without_lock.push_back(call);
    }
    return Answer::by_the_script;
  });

  GetParam().run(*manager);

  EXPECT_THAT(calls_without_lock, testing::IsEmpty());
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.back(), "push");
  EXPECT_TRUE(lock_is_free_for_a_reader());
}

TEST_P(Concurrent_Use_During, makes_readers_that_come_meanwhile_wait_for_its_end) {
  std::vector<std::future<int>> readers;
  std::atomic<int> returned{0};
  const auto start_reader = [&](Json::Value (Trigger_Manager::*read)()) {
    auto comes = std::make_shared<std::promise<void>>();
    std::future<void> has_come = comes->get_future();
    readers.push_back(std::async(std::launch::async, [this, read, comes, &returned] {
      comes->set_value();
      const int number = number_of(((*manager).*read)());
      ++returned;
      return number;
    }));
    has_come.wait();
  };
  int returned_too_early = 0;
  site.listen([&](const std::string& call) {
    if (readers.empty()) {
      start_reader(&Trigger_Manager::get_config);
      start_reader(&Trigger_Manager::get_trigger_mapping);
    }
    if (call == "push") {
      start_reader(&Trigger_Manager::get_config);
      start_reader(&Trigger_Manager::get_trigger_mapping);
    }
    returned_too_early += returned;
    return Answer::by_the_script;
  });

  GetParam().run(*manager);

  EXPECT_EQ(returned_too_early, 0);
  ASSERT_EQ(readers.size(), 4U);
  // They read what the pass stored after its last call.
  EXPECT_EQ(readers[0].get(), GetParam().config_afterwards);
  EXPECT_EQ(readers[1].get(), GetParam().mapping_afterwards);
  EXPECT_EQ(readers[2].get(), GetParam().config_afterwards);
  EXPECT_EQ(readers[3].get(), GetParam().mapping_afterwards);
}

TEST_P(Concurrent_Use_During, waits_itself_for_a_reader_that_came_before) {
  std::atomic<bool> reader_is_gone{false};
  int calls_too_early = 0;
  std::promise<void> comes;
  site.listen([&](const std::string&) {
    calls_too_early += reader_is_gone ? 0 : 1;
    return Answer::by_the_script;
  });

  lock().lock_shared();
  std::thread pass([&] {
    comes.set_value();
    GetParam().run(*manager);
  });
  comes.get_future().wait();
  reader_is_gone = true;
  lock().unlock_shared();
  pass.join();

  EXPECT_EQ(calls_too_early, 0);
  EXPECT_TRUE(site.pushed.has_value());
}

INSTANTIATE_TEST_SUITE_P(Of, Concurrent_Use_During, testing::ValuesIn(operations),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(Concurrent_Use, lets_readers_read_together) {
  lock().lock_shared();  // a reader in the middle of it

  std::thread([this] {
    EXPECT_EQ(number_of(manager->get_config()), 0);
    EXPECT_EQ(number_of(manager->get_trigger_mapping()), 0);
  }).join();

  lock().unlock_shared();
}

}  // namespace
}  // namespace kuv::test
