// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/id_allocator.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::uint64_t largest_id = std::numeric_limits<std::uint64_t>::max();

class Allocated_Ids : public testing::Test {
 protected:
  static std::uint64_t next(Id_Allocator& ids, const std::set<std::uint64_t>& taken = {}) {
    return ids.allocate([&taken](std::uint64_t id) { return taken.count(id) != 0; });
  }
};

TEST_F(Allocated_Ids, begin_with_one_and_ascend) {
  Id_Allocator ids("subscription");
  EXPECT_EQ(next(ids), 1U);
  EXPECT_EQ(next(ids), 2U);
}

TEST_F(Allocated_Ids, go_on_where_the_database_says) {
  Id_Allocator ids("subscription", 40);
  EXPECT_EQ(next(ids), 40U);
  EXPECT_EQ(next(ids), 41U);
}

TEST_F(Allocated_Ids, leave_out_those_that_are_taken) {
  Id_Allocator ids("subscription");
  EXPECT_EQ(next(ids, {1, 2, 4}), 3U);
  EXPECT_EQ(next(ids, {1, 2, 4}), 5U);
}

TEST_F(Allocated_Ids, are_not_given_out_again_when_they_are_free_again) {
  Id_Allocator ids("subscription");
  EXPECT_EQ(next(ids), 1U);
  EXPECT_EQ(next(ids, {}), 2U);
}

TEST_F(Allocated_Ids, begin_anew_behind_the_largest) {
  Id_Allocator ids("subscription", largest_id);
  EXPECT_EQ(next(ids), largest_id);
  EXPECT_EQ(next(ids, {largest_id, 0, 1}), 2U);
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
