// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/holder_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <random>
#include <set>

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Record {
  std::uint64_t id;
};

class Holders : public testing::Test {
 protected:
  Record* record(std::uint64_t id) { return &records_.emplace(id, Record{id}).first->second; }
  bool add(std::uint64_t id) { return list.add(id, record(id)); }

  std::vector<std::uint64_t> ids() const {
    std::vector<std::uint64_t> ids;
    for (const Record* const entry : list.entries()) {
      ids.push_back(entry->id);
    }
    return ids;
  }

  Holder_List<Record> list;

 private:
  std::map<std::uint64_t, Record> records_;
};

constexpr std::uint64_t largest_id = std::numeric_limits<std::uint64_t>::max();

TEST_F(Holders, are_listed_by_unsigned_id_in_whatever_order_they_come) {
  for (const std::uint64_t id :
       {std::uint64_t{7}, largest_id, std::uint64_t{0}, largest_id / 2 + 1, std::uint64_t{3}}) {
    EXPECT_TRUE(add(id));
  }
  EXPECT_THAT(ids(), ElementsAre(0, 3, 7, largest_id / 2 + 1, largest_id));
}

TEST_F(Holders, are_listed_by_unsigned_id_when_all_were_read) {
  for (const std::uint64_t id : {largest_id, std::uint64_t{1}, std::uint64_t{2}}) {
    list.append(id, record(id));
  }
  list.complete();

  EXPECT_THAT(ids(), ElementsAre(1, 2, largest_id));
  EXPECT_TRUE(list.contains(largest_id));
  EXPECT_FALSE(add(largest_id));
}

TEST_F(Holders, are_added_and_removed_once) {
  EXPECT_TRUE(add(7));
  EXPECT_FALSE(add(7));
  EXPECT_FALSE(list.remove(8));
  EXPECT_FALSE(list.remove(6));
  EXPECT_TRUE(list.remove(7));
  EXPECT_FALSE(list.remove(7));
  EXPECT_THAT(ids(), IsEmpty());
  EXPECT_FALSE(list.contains(7));
}

TEST_F(Holders, come_back_under_the_same_id) {
  add(6);
  add(7);
  add(8);
  list.remove(7);
  EXPECT_THAT(ids(), ElementsAre(6, 8));

  EXPECT_TRUE(add(7));
  EXPECT_FALSE(add(7));

  EXPECT_THAT(ids(), ElementsAre(6, 7, 8));
  EXPECT_TRUE(list.contains(7));
}

TEST_F(Holders, that_come_back_are_those_that_came_last) {
  add(7);
  list.remove(7);
  Record other{7};

  EXPECT_TRUE(list.add(7, &other));

  EXPECT_THAT(list.entries(), ElementsAre(&other));
}

TEST_F(Holders, are_those_of_a_set_after_any_additions_and_removals) {
  std::mt19937_64 random(7);
  std::set<std::uint64_t> model;
  for (int round = 0; round < 5000; ++round) {
    const std::uint64_t id = random() % 40;
    if (random() % 2 == 0) {
      EXPECT_EQ(add(id), model.insert(id).second);
    } else {
      EXPECT_EQ(list.remove(id), model.erase(id) == 1);
    }
    const std::uint64_t asked = random() % 40;
    ASSERT_EQ(list.contains(asked), model.count(asked) == 1);
  }
  EXPECT_EQ(ids(), std::vector<std::uint64_t>(model.begin(), model.end()));
}

TEST_F(Holders, are_found_by_a_walk_in_whatever_order_it_asks) {
  std::mt19937_64 random(7);
  std::set<std::uint64_t> model;
  for (std::uint64_t id = 0; id < 40; ++id) {
    add(id);
    model.insert(id);
    if (id % 3 == 0) {
      list.remove(id);
      model.erase(id);
    }
  }
  Holder_List<Record>::Walk walk(list);
  std::uint64_t asked = 0;
  for (int step = 0; step < 5000; ++step) {
    asked = random() % 4 == 0 ? random() % 45 : asked + 1;  // in order mostly, and beyond the end
    ASSERT_EQ(walk.contains(asked), model.count(asked) == 1) << asked;
  }
}

TEST_F(Holders, are_none_in_an_empty_list) {
  Holder_List<Record>::Walk walk(list);

  EXPECT_FALSE(walk.contains(7));
  EXPECT_FALSE(walk.contains(7));
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
