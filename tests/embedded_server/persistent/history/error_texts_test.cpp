// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/error_texts.h"

#include <gtest/gtest.h>

namespace kuv::test {
namespace {

using vemora::embedded_server::joined_texts;
using vemora::embedded_server::texts_in;
using Texts = std::vector<std::string>;

TEST(Error_Texts, come_back_byte_for_byte) {
  for (const Texts& texts :
       {Texts{}, Texts{""}, Texts{"", ""}, Texts{"one"}, Texts{"two\nlines\n", "3\nabc\n"},
        Texts{std::string("\0\xff", 2), "more"}}) {
    EXPECT_EQ(texts_in(joined_texts(texts)), texts);
  }
}

TEST(Error_Texts, in_other_lists_are_other_texts) {
  EXPECT_NE(joined_texts({"a", "b"}), joined_texts({"ab"}));
  EXPECT_NE(joined_texts({"a", ""}), joined_texts({"a"}));
}

TEST(Error_Texts, that_are_damaged_are_noticed) {
  const std::string whole = joined_texts({"abc", "de"});
  for (std::size_t size = 1; size < whole.size(); ++size) {
    if (size != joined_texts({"abc"}).size()) {
      EXPECT_EQ(texts_in(whole.substr(0, size)), std::nullopt) << size;
    }
  }
  for (const char* const text :
       {"\n", "x", "-1\na\n", "18446744073709551615\na\n", "3\nabcd", "1 a\n"}) {
    EXPECT_EQ(texts_in(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kuv::test
