// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/id_ranges.h"

#include <gtest/gtest.h>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::test {
namespace {

using vemora::embedded_server::Database_Error;
using vemora::embedded_server::ids_in;
using vemora::embedded_server::ranges_of;
using Ids = std::set<std::uint64_t>;

constexpr std::uint64_t largest = 18446744073709551615U;

TEST(Id_Ranges, of_ids_that_follow_each_other_are_short) {
  EXPECT_EQ(ranges_of({}), "");
  EXPECT_EQ(ranges_of({7}), "7");
  EXPECT_EQ(ranges_of({7, 8}), "7-8");
  EXPECT_EQ(ranges_of({0, 7, 9, 10, 11, 12, 20}), "0 7 9-12 20");
  EXPECT_EQ(ranges_of({0, largest - 1, largest}), "0 18446744073709551614-18446744073709551615");
}

TEST(Id_Ranges, lead_back_to_the_ids) {
  for (const Ids& ids :
       {Ids{}, Ids{0}, Ids{largest}, Ids{0, 1, 3, 5, 6, 7, largest - 1, largest}}) {
    EXPECT_EQ(ids_in(ranges_of(ids)), ids);
  }
}

TEST(Id_Ranges, that_are_none_are_noticed) {
  for (const char* const text : {"x", "7 ", " 7", "7  8", "7-", "9-7", "-7", "7,8", "7-8-9",
                                 "18446744073709551616", "0-18446744073709551615", "1-20000000"}) {
    EXPECT_THROW(ids_in(text), Database_Error) << text;
  }
}

}  // namespace
}  // namespace kuv::test
