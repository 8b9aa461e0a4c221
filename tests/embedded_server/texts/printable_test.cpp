// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/printable.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace kuv::vemora::embedded_server {
namespace {

using namespace std::string_literals;

TEST(Printable_Texts, are_shown_as_they_are) {
  for (const char* text :
       {"", "camera 10", "quotes \" ' and \\ backslashes \\x1b", "Tür 門 ворота 🚪",
        "e\u0301 \u00a0 \u3000", "\ufffd \ue000", "עברית العربية"}) {
    EXPECT_EQ(printable(text), text);
  }
}

TEST(Printable_Texts, spell_out_what_a_terminal_obeys) {
  EXPECT_EQ(printable("\x1b[31mred\x1b]0;title\x07"), "\\x1b[31mred\\x1b]0;title\\x07");
  EXPECT_EQ(printable("one\ntwo\r\nthree\tfour\0five"s),
            "one\\x0atwo\\x0d\\x0athree\\x09four\\x00five");
  EXPECT_EQ(printable("\x1f \x7f \u0080 \u0085 \u009b31m \u009f \u00a0"),
            "\\x1f \\x7f \\u0080 \\u0085 \\u009b31m \\u009f \u00a0");
}

TEST(Printable_Texts, spell_out_what_turns_or_breaks_a_line) {
  EXPECT_EQ(printable("\u200e \u200f \u061c"), "\\u200e \\u200f \\u061c");
  EXPECT_EQ(printable("\u2028 \u2029 \u202a \u202e \u2027 \u202f"),
            "\\u2028 \\u2029 \\u202a \\u202e \u2027 \u202f");
  EXPECT_EQ(printable("\u2066 \u2069 \u206a \u206f \u2070"),
            "\\u2066 \\u2069 \\u206a \\u206f \u2070");
}

TEST(Printable_Texts, spell_out_what_nobody_sees) {
  EXPECT_EQ(printable("ad\u200bmin"), "ad\\u200bmin");
  EXPECT_EQ(printable("\ufeff \u2060 \u2064 \u00ad \u034f \ufff9 \ufffb"),
            "\\ufeff \\u2060 \\u2064 \\u00ad \\u034f \\ufff9 \\ufffb");
  EXPECT_EQ(printable("\u115f \u1160 \u3164 \uffa0 \u17b4"),
            "\\u115f \\u1160 \\u3164 \\uffa0 \\u17b4");
  EXPECT_EQ(printable("a\U000e0001\U000e0041\U000e007f"), "a\\U000e0001\\U000e0041\\U000e007f");
  EXPECT_EQ(printable("\U0001bca0 \U0001d173 \U000e0fff \U000e1000"),
            "\\U0001bca0 \\U0001d173 \\U000e0fff \U000e1000");
}

TEST(Printable_Texts, spell_out_bytes_that_are_no_letter) {
  EXPECT_EQ(printable("\x80\x9b z\xff\xc3"), "\\x80\\x9b z\\xff\\xc3");
  EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");  // half of a surrogate pair
}

TEST(Printable_Texts, keep_joiners_and_selectors_where_scripts_and_pictures_need_them) {
  for (const char* text : {
           "می\u200cخواهم",                                                      // Persian
           "क्\u200dष क्\u200cष",                                                  // Devanagari
           "👩\u200d🔧 👁\ufe0f\u200d🗨\ufe0f ❤\ufe0f 葛\U000e0100",  // pictures, a form
                                                                                 // of a Han letter
           "ᠠ\u180e ᠠ\u180b",                                                    // Mongolian
       }) {
    EXPECT_EQ(printable(text), text);
  }
}

TEST(Printable_Texts, spell_out_joiners_and_selectors_that_could_only_hide_something) {
  EXPECT_EQ(printable("ga\u200cte ga\u200dte"), "ga\\u200cte ga\\u200dte");
  EXPECT_EQ(printable("\u200cم م \u200c"), "\\u200cم م \\u200c");
  EXPECT_EQ(printable("م\u200c\u200c\u200d"), "م\u200c\\u200c\\u200d");
  EXPECT_EQ(printable("a\ufe0f ❤\ufe0f\ufe01\U000e0155"), "a\\ufe0f ❤\ufe0f\\ufe01\\U000e0155");
  EXPECT_EQ(printable("م\xff\u200c م\u200b\u200c"), "م\\xff\\u200c م\\u200b\\u200c");
}

TEST(Printable_Texts, do_not_change_when_they_are_asked_for_again) {
  for (const char* text :
       {"\x1b[1m \\x1b \\\\ \u202e", "م\u200c\u200c ❤\ufe0f\ufe0f \xff\U000e0041"}) {
    EXPECT_EQ(printable(printable(text)), printable(text));
  }
}

TEST(Printable_Texts, hold_no_character_that_is_not_to_be_shown) {
  for (char32_t code = 0; code < 0x20; ++code) {
    EXPECT_EQ(printable(std::string(1, static_cast<char>(code))).size(), 4);
  }
  for (char code = '\x20'; code < '\x7f'; ++code) {
    EXPECT_EQ(printable(std::string(1, code)), std::string(1, code));
  }
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
