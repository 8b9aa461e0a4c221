// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/camera_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t largest_id = std::numeric_limits<std::uint64_t>::max();

std::shared_ptr<camera> a_camera(std::uint64_t id, Tag_Map tags = {}) {
  auto record = std::make_shared<camera>();
  record->id = id;
  record->tags = std::move(tags);
  return record;
}

std::vector<std::uint64_t> ids_of(const Camera_Index::Camera_List& cameras) {
  std::vector<std::uint64_t> ids;
  for (const std::shared_ptr<camera>& record : cameras) {
    ids.push_back(record->id);
  }
  return ids;
}

class Cameras : public testing::Test {
 protected:
  // As the database orders ids: as signed numbers.
  const Camera_Index index{{a_camera(largest_id, {{"site", {"north"}}}), a_camera(1),
                            a_camera(10, {{"site", {std::nullopt}}, {"door", {"main"}}})}};
};

TEST_F(Cameras, are_ordered_by_unsigned_id_and_found_by_it) {
  EXPECT_THAT(ids_of(index.all()), ElementsAre(1, 10, largest_id));
  for (const std::uint64_t id : {std::uint64_t{1}, std::uint64_t{10}, largest_id}) {
    ASSERT_NE(index.find(id), nullptr);
    EXPECT_EQ(index.find(id)->id, id);
  }
  EXPECT_EQ(index.find(2), nullptr);
}

TEST_F(Cameras, are_found_by_their_tags) {
  EXPECT_THAT(ids_of(index.matching({})), ElementsAre(1, 10, largest_id));
  EXPECT_THAT(ids_of(index.matching({{"site", std::nullopt}})), ElementsAre(10, largest_id));
  EXPECT_THAT(ids_of(index.matching({{"site", "north"}})), ElementsAre(largest_id));
  EXPECT_THAT(ids_of(index.matching({{"site", "north"}, {"door", "main"}})),
              ElementsAre(10, largest_id));
  EXPECT_THAT(ids_of(index.matching({{"gate", std::nullopt}})), IsEmpty());
}

TEST_F(Cameras, are_selected_once_from_those_that_are_stored) {
  const auto every = [](const camera&) { return true; };
  const auto but_ten = [](const camera& record) { return record.id != 10; };
  EXPECT_THAT(ids_of(index.select({}, every)), ElementsAre(1, 10, largest_id));
  EXPECT_THAT(ids_of(index.select({}, but_ten)), ElementsAre(1, largest_id));
  EXPECT_THAT(ids_of(index.select({a_camera(10), a_camera(1), a_camera(10), a_camera(5)}, every)),
              ElementsAre(1, 10));
  EXPECT_EQ(index.select({a_camera(10)}, every).at(0), index.find(10));
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
