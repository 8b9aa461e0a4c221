// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/records/trigger_links.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace kuv::vemora {
namespace {

using testing::ElementsAre;

constexpr std::uint64_t largest_id = std::numeric_limits<std::uint64_t>::max();

std::shared_ptr<trigger> a_trigger(std::uint64_t id) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  return record;
}

std::vector<std::uint64_t> ids_in(const Trigger_Link_List& links) {
  std::vector<std::uint64_t> ids;
  for (const Trigger_Link& link : links) {
    ids.push_back(id_of(link));
  }
  return ids;
}

std::vector<std::uint64_t> ids_in(const Trigger_Set& links) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<trigger>& link : links) {
    ids.push_back(link->id);
  }
  return ids;
}

template <class Links>
class Links_To_Triggers : public testing::Test {
 protected:
  Links links;
};

using Kinds = testing::Types<Trigger_Link_List, Trigger_Set>;
TYPED_TEST_SUITE(Links_To_Triggers, Kinds, );

TYPED_TEST(Links_To_Triggers, ascend_by_unsigned_id_each_once) {
  for (const std::uint64_t id : {std::uint64_t{7}, largest_id, std::uint64_t{0}, largest_id / 2 + 1,
                                 std::uint64_t{7}, std::uint64_t{8}}) {
    add_link(this->links, a_trigger(id));
  }
  EXPECT_THAT(ids_in(this->links), ElementsAre(0, 7, 8, largest_id / 2 + 1, largest_id));
}

TYPED_TEST(Links_To_Triggers, are_removed_by_id_where_they_are) {
  for (const std::uint64_t id : {1, 3, 5}) {
    add_link(this->links, a_trigger(id));
  }
  for (const std::uint64_t id : {0, 2, 3, 6}) {
    remove_link(this->links, id);
  }
  EXPECT_THAT(ids_in(this->links), ElementsAre(1, 5));
  remove_link(this->links, 1);
  remove_link(this->links, 5);
  remove_link(this->links, 5);
  EXPECT_TRUE(this->links.empty());
}

TEST(A_List_Of_Links, is_searched_by_id) {
  Trigger_Link_List links;
  EXPECT_FALSE(find_link(links, 7).is_there);
  EXPECT_FALSE(holds(links, 7));
  for (const std::uint64_t id : {1, 3, 5}) {
    add_link(links, a_trigger(id));
  }
  for (std::uint64_t id = 0; id <= 6; ++id) {
    const Found_Link found = find_link(links, id);
    EXPECT_EQ(found.is_there, id % 2 == 1) << id;
    EXPECT_EQ(holds(links, id), id % 2 == 1) << id;
    EXPECT_EQ(static_cast<std::uint64_t>(found.position - links.begin()), id / 2) << id;
  }
}

}  // namespace
}  // namespace kuv::vemora
