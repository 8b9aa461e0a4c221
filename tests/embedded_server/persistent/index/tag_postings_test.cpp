// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/tag_postings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "vemora/platform/tags/tag_filter.h"

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Postings_Of_Tags, find_by_name_and_by_value) {
  Tag_Postings<int> postings;
  postings.add("site", "north", 3);
  postings.add("site", std::nullopt, 1);
  postings.add("site", "", 2);
  postings.add("door", "north", 4);

  EXPECT_THAT(postings.find_any({{"site", std::nullopt}}), ElementsAre(1, 2, 3));
  EXPECT_THAT(postings.find_any({{"site", "north"}}), ElementsAre(3));
  EXPECT_THAT(postings.find_any({{"site", ""}}), ElementsAre(2));
  EXPECT_THAT(postings.find_any({{"site", "south"}}), IsEmpty());
  EXPECT_THAT(postings.find_any({{"gate", std::nullopt}}), IsEmpty());
}

TEST(Postings_Of_Tags, find_an_item_once_however_many_terms_it_satisfies) {
  Tag_Postings<int> postings;
  postings.add("site", "north", 1);
  postings.add("door", "main", 1);

  EXPECT_THAT(postings.find_any({{"site", "north"}, {"site", std::nullopt}, {"door", "main"}}),
              ElementsAre(1));
}

TEST(Postings_Of_Tags, find_nothing_without_a_term) {
  Tag_Postings<int> postings;
  postings.add("site", "north", 1);
  EXPECT_THAT(postings.find_any({}), IsEmpty());
}

class Random_Tags {
 public:
  Tag_Map some_tags() {
    Tag_Map tags;
    for (const std::string& name : names_) {
      if (random_() % 2 == 0) {
        tags[name].value = some_value();
      }
    }
    return tags;
  }

  /// At least one.
  std::set<ODB_Utils::Tag_Search_Term> some_terms() {
    std::set<ODB_Utils::Tag_Search_Term> terms;
    for (std::size_t count = 1 + random_() % 3; count > 0; --count) {
      terms.insert({names_[random_() % names_.size()], some_value()});
    }
    return terms;
  }

 private:
  std::optional<std::string> some_value() {
    static const std::vector<std::optional<std::string>> values{std::nullopt, "", "north", "North",
                                                                std::string("north\0", 6)};
    return values[random_() % values.size()];
  }

  const std::vector<std::string> names_{"", "door", "doors", "site"};
  std::mt19937_64 random_{20240229};
};

TEST(Postings_Of_Tags, find_what_the_tag_filter_says_yes_to) {
  Random_Tags random;
  std::size_t found = 0;
  for (int round = 0; round < 200; ++round) {
    std::vector<Tag_Map> items;
    Tag_Postings<std::size_t> postings;
    for (std::size_t item = 0; item < 20; ++item) {
      items.push_back(random.some_tags());
      for (const auto& [name, info] : items.back()) {
        postings.add(name, info.value, item);
      }
    }
    const auto terms = random.some_terms();
    std::vector<std::size_t> expected;
    for (std::size_t item = 0; item < items.size(); ++item) {
      if (Tag_Filter::matches_any(items[item], terms)) {
        expected.push_back(item);
      }
    }
    ASSERT_EQ(postings.find_any(terms), expected);
    found += expected.size();
  }
  EXPECT_GT(found, 500U);   // or it says nothing
  EXPECT_LT(found, 3500U);  // of 4,000
}

TEST(A_Tag, satisfies_a_term_of_its_value_or_of_none) {
  EXPECT_TRUE(Tag_Filter::satisfies({"north"}, {"site", std::nullopt}));
  EXPECT_TRUE(Tag_Filter::satisfies({std::nullopt}, {"site", std::nullopt}));
  EXPECT_TRUE(Tag_Filter::satisfies({"north"}, {"site", "north"}));
  EXPECT_FALSE(Tag_Filter::satisfies({"north"}, {"site", "north "}));
  EXPECT_FALSE(Tag_Filter::satisfies({std::nullopt}, {"site", ""}));
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
