// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <set>
#include <thread>
#include <vector>

#include "embedded_server/persistent/database_test.h"

namespace kuv::test {
namespace {

using Tree = Capability_Document::Tree;

/// Cameras of which many share a capability document.
class Site_Of_Cameras : public Database_Fixture {
 public:
  static constexpr std::size_t documents = 5;
  static constexpr std::size_t count = 100;

  Site_Of_Cameras()
      : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    for (std::size_t id = 0; id < count; ++id) {
      site.given_camera(id).with_topic("topic " + std::to_string(id % documents));
    }
  }
};

/// What a few of the cameras say, looked at together with the other threads.
std::vector<const Tree*> look_at(const std::vector<std::shared_ptr<camera>>& cameras,
                                 std::size_t first, std::size_t step, std::atomic<int>& missing) {
  --missing;
  while (missing != 0) {
    std::this_thread::yield();
  }
  std::vector<const Tree*> trees;
  for (std::size_t place = first; place < cameras.size(); place += step) {
    trees.push_back(&cameras[place]->capabilities.tree());
  }
  return trees;
}

/// The trees that four threads see, each in other cameras.
std::set<const Tree*> seen_by_four(const std::vector<std::shared_ptr<camera>>& cameras) {
  constexpr std::size_t threads = 4;
  std::atomic<int> missing{threads};
  std::vector<std::future<std::vector<const Tree*>>> lookers;
  for (std::size_t first = 0; first < threads; ++first) {
    lookers.push_back(std::async(std::launch::async, look_at, std::cref(cameras), first, threads,
                                 std::ref(missing)));
  }
  std::set<const Tree*> seen;
  for (auto& looker : lookers) {
    const std::vector<const Tree*> trees = looker.get();
    seen.insert(trees.begin(), trees.end());
  }
  return seen;
}

TEST(Threads_Of_Cameras, see_one_tree_of_each_document_whoever_looks_first) {
  Site_Of_Cameras site;
  for (int time = 0; time < 40; ++time) {  // they must meet in the middle of a look
    const auto cameras = read_cameras(site.database());
    ASSERT_EQ(cameras.size(), Site_Of_Cameras::count);

    const std::set<const Tree*> seen = seen_by_four(cameras);

    EXPECT_EQ(seen.size(), Site_Of_Cameras::documents);
    for (const Tree* const tree : seen) {
      EXPECT_FALSE(tree->empty());
    }
  }
}

TEST(Threads_Of_Cameras, look_while_others_write_the_site_and_run_passes) {
  Site_Of_Cameras site;
  const auto cameras = read_cameras(site.database());
  const auto write = [&site] {
    for (int time = 0; time < 5; ++time) {
      site.site.store_in(site.database());
      Pass_Scope pass(site.database(), Database_Fixture::server_id);
      EXPECT_EQ(read_cameras(site.database()).size(), Site_Of_Cameras::count);
      pass.end();
    }
  };

  auto writer = std::async(std::launch::async, write);
  auto other_writer = std::async(std::launch::async, write);
  std::atomic<int> missing{1};
  const auto trees = look_at(cameras, 0, 1, missing);
  writer.get();
  other_writer.get();

  EXPECT_EQ(std::set<const Tree*>(trees.begin(), trees.end()).size(), Site_Of_Cameras::documents);
}

}  // namespace
}  // namespace kuv::test
