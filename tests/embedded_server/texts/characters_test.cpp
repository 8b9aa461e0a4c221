// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/characters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kuv::vemora::embedded_server {
namespace {

TEST(Characters, take_one_to_four_bytes) {
  EXPECT_EQ(character_size("a", 0), 1);
  EXPECT_EQ(character_size(std::string("\0", 1), 0), 1);
  EXPECT_EQ(character_size("\x7F", 0), 1);
  EXPECT_EQ(character_size("\xC2\x80", 0), 2);      // U+0080
  EXPECT_EQ(character_size("\xE0\xA0\x80", 0), 3);  // U+0800
  EXPECT_EQ(character_size("門", 0), 3);
  EXPECT_EQ(character_size("\xED\x9F\xBF", 0), 3);      // U+D7FF
  EXPECT_EQ(character_size("\xF0\x90\x80\x80", 0), 4);  // U+10000
  EXPECT_EQ(character_size("\xF4\x8F\xBF\xBF", 0), 4);  // U+10FFFF
}

TEST(Characters, begin_nowhere_in_bytes_that_are_no_utf8) {
  const std::vector<std::string> broken{"\x80",
                                        "\xBF",
                                        "\xC0\x80",
                                        "\xC1\xBF",
                                        "\xC2",
                                        "\xC2 ",
                                        "\xE0\x9F\xBF",
                                        "\xE9\x96",
                                        "\xED\xA0\x80",
                                        "\xED\xBF\xBF",
                                        "\xF0\x8F\x80\x80",
                                        "\xF0\x9F\x9A",
                                        "\xF4\x90\x80\x80",
                                        "\xF5\x80\x80\x80",
                                        "\xFF"};
  for (const std::string& bytes : broken) {
    EXPECT_EQ(character_size(bytes, 0), 0) << testing::PrintToString(bytes);
  }
}

TEST(Characters, begin_nowhere_after_the_end) {
  EXPECT_EQ(character_size("a", 1), 0);
  EXPECT_EQ(character_size("", 0), 0);
}

TEST(Characters, are_counted_as_people_would_and_stray_bytes_one_by_one) {
  EXPECT_EQ(count_characters(""), 0);
  EXPECT_EQ(count_characters("Tür"), 3);
  EXPECT_EQ(count_characters("門\x80\xE9\x96!"), 5);
}

TEST(Characters, are_never_cut_in_two_at_the_beginning_of_a_text) {
  EXPECT_EQ(first_characters("Tür", 2), "Tü");
  EXPECT_EQ(first_characters("Tür", 0), "");
  EXPECT_EQ(first_characters("Tür", 9), "Tür");
  EXPECT_EQ(first_characters("\x80z", 1), "\x80");
}

TEST(Characters, do_not_include_a_byte_order_mark) {
  EXPECT_EQ(byte_order_mark_size("\xEF\xBB\xBF{}"), 3);
  EXPECT_EQ(byte_order_mark_size("\xEF\xBB"), 0);
  EXPECT_EQ(byte_order_mark_size("{}"), 0);
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
