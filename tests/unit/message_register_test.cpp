#include "support/message_register.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include "unit/parser_test.h"

namespace kuv::test {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Fails the run when a registered message was asserted by no test of it. A run of chosen tests
/// cannot tell.
class Every_Message_Is_Asserted : public ::testing::Environment {
 public:
  void TearDown() override {
    const auto& run = *::testing::UnitTest::GetInstance();
    if (run.test_to_run_count() == run.total_test_count()) {
      EXPECT_THAT(messages_seen().met_less_than(1), IsEmpty()) << "asserted by no test";
    }
  }
};

const auto* const every_message_is_asserted =
    ::testing::AddGlobalTestEnvironment(new Every_Message_Is_Asserted);

// What the parser's sources say

std::string text_of(const std::filesystem::path& path) {
  std::ifstream stream(path);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Replaces the escapes that message texts use.
std::string unescaped(const std::string& literal) {
  return std::regex_replace(literal, std::regex(R"(\\(["\\]))"), "$1");
}

/// The string literals of a source text; those that stand next to each other are one.
std::vector<std::string> literals_in(const std::string& source) {
  static const std::regex literal_run(R"re((?:"(?:[^"\\\n]|\\.)*"\s*)+)re");
  static const std::regex literal(R"re("((?:[^"\\\n]|\\.)*)")re");
  std::vector<std::string> found;
  for (std::sregex_iterator run(source.begin(), source.end(), literal_run), end; run != end;
       ++run) {
    const std::string text = run->str();
    std::string joined;
    for (std::sregex_iterator part(text.begin(), text.end(), literal); part != end; ++part) {
      joined += (*part)[1];
    }
    found.push_back(unescaped(joined));
  }
  return found;
}

/// The sources of the parser without comments and includes, which quote things too.
std::string parser_sources() {
  std::string all;
  for (const auto& entry : std::filesystem::directory_iterator(VEMORA_PARSER_SOURCES)) {
    if (entry.path().extension() == ".cpp") {
      all += text_of(entry.path());
    }
  }
  return std::regex_replace(all, std::regex(R"(//[^\n]*|#include[^\n]*)"), "");
}

/// A sentence; names of keys, modes and channels are none.
bool is_sentence(const std::string& text) {
  return text.find(' ') != std::string::npos;
}

bool is_log_line(const std::string& text) {
  return text.find(" | ") != std::string::npos;
}

/// Whether a pattern of the sources, its holes filled, can become that registered message.
bool can_become(const std::string& pattern, const std::string& message) {
  static const std::regex special(R"([.*+?^$()\[\]\\|])");
  static const std::regex hole(R"(\{\})");
  const std::string escaped = std::regex_replace(pattern, special, R"(\$&)");
  return std::regex_match(message, std::regex(std::regex_replace(escaped, hole, ".+")));
}

std::vector<std::string> message_patterns() {
  std::vector<std::string> patterns;
  for (const std::string& literal : literals_in(parser_sources())) {
    if (is_sentence(literal) && !is_log_line(literal)) {
      patterns.push_back(literal);
    }
  }
  return patterns;
}

TEST(Message_Register, lists_every_sentence_of_the_parser) {
  const std::vector<std::string> patterns = message_patterns();
  ASSERT_THAT(patterns, Contains("Missing \"triggers\" array."));
  for (const std::string& pattern : patterns) {
    EXPECT_TRUE(std::any_of(registered_messages().begin(), registered_messages().end(),
                            [&](const auto& message) { return can_become(pattern, message); }))
        << pattern;
  }
}

TEST(Message_Register, lists_nothing_that_the_parser_cannot_say) {
  const std::vector<std::string> patterns = message_patterns();
  for (const std::string& message : registered_messages()) {
    EXPECT_TRUE(std::any_of(patterns.begin(), patterns.end(), [&](const auto& pattern) {
      return can_become(pattern, message);
    })) << message;
  }
}

TEST(Message_Register, lists_each_message_once) {
  const auto& messages = registered_messages();
  EXPECT_THAT(messages, SizeIs(41));
  EXPECT_THAT(std::set<std::string>(messages.begin(), messages.end()), SizeIs(messages.size()));
}

TEST(Message_Register, takes_a_number_and_nothing_else_for_an_id) {
  const char* const message = "All \"id\" values must be unique, {} is duplicated.";
  EXPECT_TRUE(is_filled_from("All \"id\" values must be unique, 7 is duplicated.", message));
  EXPECT_TRUE(is_filled_from(
      "All \"id\" values must be unique, 18446744073709551615 is duplicated.", message));
  EXPECT_FALSE(is_filled_from("All \"id\" values must be unique, {} is duplicated.", message));
  EXPECT_FALSE(is_filled_from("All \"id\" values must be unique,  is duplicated.", message));
  EXPECT_FALSE(is_filled_from("All \"id\" values must be unique, 7 is duplicated", message));
  EXPECT_FALSE(is_filled_from("all \"id\" values must be unique, 7 is duplicated.", message));
}

TEST(Message_Register, counts_what_it_knows_and_refuses_the_rest) {
  Message_Tally tally;

  EXPECT_TRUE(tally.note("Missing \"triggers\" array."));
  EXPECT_TRUE(tally.note("Missing \"triggers\" array."));
  EXPECT_FALSE(tally.note("Missing \"triggers\" array"));
  EXPECT_FALSE(tally.note(""));

  EXPECT_EQ(tally.counts().at("Missing \"triggers\" array."), 2);
  EXPECT_THAT(tally.met_less_than(3), SizeIs(registered_messages().size()));
  EXPECT_THAT(tally.met_less_than(2), SizeIs(registered_messages().size() - 1));
  EXPECT_THAT(tally.met_less_than(0), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
