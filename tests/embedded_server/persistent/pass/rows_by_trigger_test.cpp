// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/rows_by_trigger.h"

#include <gmock/gmock.h>

#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora::embedded_server;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<std::uint64_t, std::uint64_t>> triggers_and_records_of(
    const std::vector<Changes::Link>& links) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> pairs;
  for (const auto& row : rows_by_trigger<vemora::rows::Subscription_Trigger>(links)) {
    pairs.emplace_back(row.key.linked_id, row.key.record_id);
  }
  return pairs;
}

TEST(Rows_By_Trigger, have_the_triggers_in_order_and_the_records_of_each_as_they_were) {
  constexpr std::uint64_t most = ~std::uint64_t{0};

  EXPECT_THAT(
      triggers_and_records_of({{1, 7}, {1, most}, {2, 0}, {2, 7}, {3, 0}, {3, 7}}),
      ElementsAre(Pair(0, 2), Pair(0, 3), Pair(7, 1), Pair(7, 2), Pair(7, 3), Pair(most, 1)));
}

TEST(Rows_By_Trigger, are_none_without_links) {
  EXPECT_THAT(triggers_and_records_of({}), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
