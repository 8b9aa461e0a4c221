// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/display_width.h"

#include <gtest/gtest.h>

#include <clocale>

namespace kuv::vemora::embedded_server {
namespace {

TEST(Display_Width, is_one_column_for_a_letter_of_most_scripts) {
  EXPECT_EQ(display_width(""), 0);
  EXPECT_EQ(display_width("gate 1"), 6);
  EXPECT_EQ(display_width("Tür ворота"), 10);
}

TEST(Display_Width, is_two_columns_for_a_wide_character) {
  EXPECT_EQ(display_width("門"), 2);
  EXPECT_EQ(display_width("정문"), 4);
  EXPECT_EQ(display_width("🚪"), 2);
}

TEST(Display_Width, is_nothing_for_a_combining_character) {
  EXPECT_EQ(display_width("e\u0301"), 1);
  EXPECT_EQ(display_width("\u0939\u093F\u0902"),
            2);  // a consonant, a vowel of its own width, a dot
}

TEST(Display_Width, is_one_column_for_a_byte_that_is_no_utf8) {
  EXPECT_EQ(display_width("a\xFF\x80z"), 4);
}

TEST(Display_Width, does_not_depend_on_the_locale_of_the_process_and_leaves_it_alone) {
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  EXPECT_EQ(display_width("門"), 2);
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
}

TEST(First_Columns, cut_no_character_and_keep_what_combines_with_the_last_one) {
  EXPECT_EQ(first_columns("gate", 2), "ga");
  EXPECT_EQ(first_columns("gate", 9), "gate");
  EXPECT_EQ(first_columns("門門", 3), "門");
  EXPECT_EQ(first_columns("e\u0301t", 1), "e\u0301");
  EXPECT_EQ(first_columns("gate", 0), "");
}

TEST(Shortened_Text, ends_with_dots_where_there_is_room_for_them) {
  EXPECT_EQ(shortened_to("gate", 4), "gate");
  EXPECT_EQ(shortened_to("gateway", 6), "gat...");
  EXPECT_EQ(shortened_to("門門門門", 7), "門門...");
  EXPECT_EQ(shortened_to("門門門門", 6), "門...");
  EXPECT_EQ(shortened_to("gateway", 3), "gat");
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
