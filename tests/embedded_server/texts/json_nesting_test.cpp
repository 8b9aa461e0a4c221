// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/json_nesting.h"

#include <gtest/gtest.h>

#include <string>

namespace kuv::vemora::embedded_server {
namespace {

TEST(Nesting, may_be_a_thousand_levels_deep) {
  for (const char bracket : {'[', '{'}) {
    EXPECT_FALSE(is_nested_too_deeply(std::string(1000, bracket)));
    EXPECT_TRUE(is_nested_too_deeply(std::string(1001, bracket)));
  }
  EXPECT_TRUE(is_nested_too_deeply(std::string(1000, '[') + "1, \"a\", {}"));
  EXPECT_FALSE(is_nested_too_deeply(std::string(1000, '[') + "]{}, []"));
  EXPECT_FALSE(is_nested_too_deeply(""));
}

TEST(Nesting, is_not_that_of_brackets_in_texts) {
  const std::string texts = R"(["\"[{", "\\", "]]]"])";
  EXPECT_FALSE(is_nested_too_deeply(std::string(999, '[') + texts));
  EXPECT_TRUE(is_nested_too_deeply(std::string(1000, '[') + texts));
  EXPECT_FALSE(is_nested_too_deeply("\"" + std::string(2000, '[')));
  EXPECT_FALSE(is_nested_too_deeply("\"\\"));
}

TEST(Nesting, goes_on_behind_brackets_too_many) {
  EXPECT_FALSE(is_nested_too_deeply("]]}" + std::string(1000, '[')));
  EXPECT_TRUE(is_nested_too_deeply("]]}" + std::string(1001, '[')));
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
