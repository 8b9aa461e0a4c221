// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/tag_texts.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kuv::vemora::operations {
namespace {

using Terms = std::set<ODB_Utils::Tag_Search_Term>;
using Words = std::vector<std::string>;

Tag_Map tags_of(const std::vector<std::pair<std::string, std::optional<std::string>>>& pairs) {
  Tag_Map tags;
  for (const auto& [name, value] : pairs) {
    tags[name].value = value;
  }
  return tags;
}

TEST(Tag_Texts, name_the_tags_of_a_record) {
  EXPECT_EQ(described(tags_of({})), "no tags");
  EXPECT_EQ(described(tags_of({{"outdoor", std::nullopt}, {"area", "yard"}})),
            "area=yard, outdoor");
}

TEST(Tag_Texts, name_the_tags_of_a_subscription) {
  std::set<Tag_Entry> tags;
  EXPECT_EQ(described(tags), "no tags");
  tags.insert({"outdoor", {}});
  tags.insert({"area", {"yard"}});
  EXPECT_EQ(described(tags), "area=yard, outdoor");
}

TEST(Tag_Texts, name_what_a_filter_asks_for) {
  EXPECT_EQ(described(Terms{{"area", "yard"}}), "area=yard");
  EXPECT_EQ(described(Terms{{"area", "yard"}, {"area", "gate"}, {"outdoor", std::nullopt}}),
            "area=gate or area=yard or outdoor");
}

TEST(Tag_Texts, quote_what_could_be_taken_for_something_else) {
  EXPECT_EQ(described(Words{"or"}), "\"or\"");
  EXPECT_EQ(described(Words{"nor"}), "nor");
  EXPECT_EQ(described(Words{""}), "\"\"");
  for (const char* const text : {"a b", "a,b", "a=b"}) {
    EXPECT_EQ(described(Words{text}), "\"" + std::string(text) + "\"");
  }
  EXPECT_NE(described(Words{"a\"b"}), "a\"b");
  EXPECT_EQ(described(tags_of({{"area", ""}, {"gate 2", "north side"}})),
            "area=\"\", \"gate 2\"=\"north side\"");
}

TEST(Tag_Texts, quote_long_texts_as_messages_do) {
  const std::string longest(59, 'x');
  EXPECT_EQ(described(Words{longest}), longest);
  EXPECT_EQ(described(Words{longest + "x"}).substr(0, 2), "\"x");
}

TEST(Tag_Texts, name_twelve_and_count_the_others) {
  Words words;
  std::string twelve;
  for (int number = 1; number <= 12; ++number) {
    words.push_back(std::to_string(number));
    twelve += (number == 1 ? "" : ", ") + words.back();
  }
  EXPECT_EQ(described(words), twelve);
  words.emplace_back("13");
  EXPECT_EQ(described(words), twelve + " and 1 more");
  words.emplace_back("14");
  EXPECT_EQ(described(words), twelve + " and 2 more");
}

}  // namespace
}  // namespace kuv::vemora::operations
