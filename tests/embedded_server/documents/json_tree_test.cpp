// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_tree.h"

#include <gtest/gtest.h>
#include <json/reader.h>
#include <sys/resource.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>
#include <new>

#include "tests/embedded_server/documents/random_json.h"
#include "vemora/embedded_server/documents/json_grammar.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The tree of a text that our grammar takes, as the JSON library reads it.
std::optional<Json::Value> reference_tree(const std::string& text, std::size_t most_values) {
  if (find_grammar_fault(text, most_values)) {
    return std::nullopt;
  }
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["stackLimit"] = Json::UInt64(deepest_nesting);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  return reader->parse(text.data(), text.data() + text.size(), &value, nullptr)
             ? std::make_optional(value)
             : std::nullopt;
}

std::string_view text_of(const Json::Value& value) {
  const char* begin = nullptr;
  const char* end = nullptr;
  value.getString(&begin, &end);
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// Bit by bit: minus zero is not zero.
bool is_same_number(double left, double right) {
  return std::memcmp(&left, &right, sizeof left) == 0;
}

bool is_same(const Json::Value& left, const Json::Value& right);

bool has_same_children(const Json::Value& left, const Json::Value& right) {
  if (left.size() != right.size()) {
    return false;
  }
  for (auto one = left.begin(), other = right.begin(); one != left.end(); ++one, ++other) {
    if (one.key() != other.key() || !is_same(*one, *other)) {
      return false;
    }
  }
  return true;
}

bool is_same_payload(const Json::Value& left, const Json::Value& right) {
  switch (left.type()) {
    case Json::nullValue:
      return true;
    case Json::intValue:
      return left.asInt64() == right.asInt64();
    case Json::uintValue:
      return left.asUInt64() == right.asUInt64();
    case Json::realValue:
      return is_same_number(left.asDouble(), right.asDouble());
    case Json::booleanValue:
      return left.asBool() == right.asBool();
    case Json::stringValue:
      return text_of(left) == text_of(right);
    case Json::arrayValue:
    case Json::objectValue:
      return has_same_children(left, right);
  }
  return false;
}

/// In their types, values and places.
bool is_same(const Json::Value& left, const Json::Value& right) {
  return left.type() == right.type() && left.getOffsetStart() == right.getOffsetStart() &&
         left.getOffsetLimit() == right.getOffsetLimit() && is_same_payload(left, right);
}

std::optional<Json::Value> tree_of(const std::string& text) {
  return read_json_tree(text, default_most_values);
}

TEST(Json_Trees, are_those_of_the_json_library) {
  constexpr int texts = 10'000;
  int taken = 0;
  int left_to_others = 0;
  for (int seed = 0; seed < texts; ++seed) {
    fuzz::Random random(seed);
    const std::string text = fuzz::random_json(random);
    const std::size_t most_values = random.chance(10) ? random.below(12) : default_most_values;
    const auto reference = reference_tree(text, most_values);
    const auto tree = read_json_tree(text, most_values);
    taken += tree ? 1 : 0;
    left_to_others += reference && !tree ? 1 : 0;
    ASSERT_TRUE(reference || !tree) << "seed " << seed << ":\n" << text;
    ASSERT_TRUE(!tree || is_same(*tree, *reference)) << "seed " << seed << ":\n" << text;
  }
  EXPECT_GT(taken, texts * 2 / 5);
  EXPECT_LT(left_to_others, texts / 5);
}

TEST(Json_Trees, hold_copies_that_outlive_them) {
  auto tree = tree_of(R"({"triggers": [{"id": 7, "other": "text"}]})");
  ASSERT_TRUE(tree);
  const Json::Value copy = *tree;
  tree.reset();
  EXPECT_EQ(copy["triggers"][0]["id"].asInt(), 7);
  EXPECT_EQ(copy["triggers"][0]["other"].asString(), "text");
}

TEST(Json_Trees, are_made_of_numbers_as_exact_as_they_can_be) {
  const auto tree = tree_of("[9007199254740993.0, 2.2250738585072011e-308, 18446744073709551616]");
  ASSERT_TRUE(tree);
  EXPECT_EQ((*tree)[0].asDouble(), 9007199254740992.0);
  EXPECT_EQ((*tree)[1].asDouble(), 2.2250738585072011e-308);
  EXPECT_EQ((*tree)[2].asDouble(), 18446744073709551616.0);
}

TEST(Json_Trees, are_as_deep_as_documents_may_be_and_no_deeper) {
  const auto nested = [](std::size_t levels, const std::string& inside) {
    return std::string(levels, '[') + inside + std::string(levels, ']');
  };
  EXPECT_TRUE(tree_of(nested(deepest_nesting, "")));
  EXPECT_TRUE(tree_of(nested(deepest_nesting - 1, "7")));
  EXPECT_FALSE(tree_of(nested(deepest_nesting, "7")));
  EXPECT_FALSE(tree_of(nested(deepest_nesting + 1, "")));
  EXPECT_FALSE(tree_of(nested(1'000'000, "")));
}

TEST(Json_Trees, are_not_made_of_control_characters) {
  for (char control = 0; control < ' '; ++control) {
    for (const char* const before : {"", "exactly 16 bytes", "more than sixteen bytes of text"}) {
      const std::string text = std::string("[\"") + before + control + "and behind it more\"]";
      EXPECT_FALSE(tree_of(text)) << static_cast<int>(control) << " behind " << before;
    }
  }
}

TEST(Json_Trees, are_not_made_of_what_is_behind_a_byte_nul) {
  using namespace std::string_literals;
  EXPECT_TRUE(tree_of("[]"));
  EXPECT_FALSE(tree_of("[]\0"s));
  EXPECT_FALSE(tree_of("[]\0[]"s));
  EXPECT_FALSE(tree_of("\0[]"s));
}

#ifndef VEMORA_SANITIZED
/// Leaves the process little more memory than it has.
void limit_memory() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  const rlim_t limit = pages * 4096 + (rlim_t{16} << 20);
  const rlimit limits{limit, limit};
  if (setrlimit(RLIMIT_AS, &limits) != 0) {
    std::exit(2);
  }
}

TEST(Json_Trees, throw_where_there_is_no_memory_for_a_text) {
  const std::string text = "[\"" + std::string(std::size_t{64} << 20, 'x') + "\"]";
  const auto read = [&] {
    limit_memory();
    try {
      tree_of(text);
    } catch (const std::bad_alloc&) {
      std::exit(0);
    }
    std::exit(1);
  };
  EXPECT_EXIT(read(), testing::ExitedWithCode(0), "");
}
#endif

}  // namespace
}  // namespace kuv::vemora::embedded_server
