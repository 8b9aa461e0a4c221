// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/distinct_texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace kuv::vemora::operations {
namespace {

TEST(Distinct_Texts, are_kept_once_in_the_order_in_which_they_came) {
  Distinct_Texts distinct;
  for (const char* const text : {"radar", "lidar", "radar", "", "sonar", "lidar", ""}) {
    distinct.add(text);
  }

  EXPECT_THAT(distinct.texts(), testing::ElementsAre("radar", "lidar", "", "sonar"));
}

TEST(Distinct_Texts, are_not_each_compared_with_all_the_others) {
  std::size_t comparisons = 0;
  Distinct_Texts distinct([&comparisons](const std::string& left, const std::string& right) {
    ++comparisons;
    return left < right;
  });
  for (int number = 0; number < 1'024; ++number) {
    distinct.add(std::to_string(number));
  }

  EXPECT_EQ(distinct.texts().size(), 1'024);
  EXPECT_LT(comparisons, 1'024 * 25);
}

}  // namespace
}  // namespace kuv::vemora::operations
