// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/message_register.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "trigger_parser/parser_test.h"
#include "trigger_parser/source_sentences.h"

namespace kuv::test {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Fails the run when there is a registered message that no test compared, whole and with success,
/// with what a document was rejected with. A run of chosen tests cannot tell.
class Every_Message_Is_Asserted : public ::testing::Environment {
 public:
  void TearDown() override {
    const auto& run = *::testing::UnitTest::GetInstance();
    if (run.test_to_run_count() == run.total_test_count()) {
      EXPECT_THAT(messages_asserted().met_less_than(1), IsEmpty()) << "asserted by no test";
    }
  }
};

const auto* const every_message_is_asserted =
    ::testing::AddGlobalTestEnvironment(new Every_Message_Is_Asserted);

std::vector<std::string> message_patterns() {
  return sentences_of_sources(VEMORA_PARSER_SOURCES);
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

TEST(Literals_Of_A_Source, are_read_as_the_compiler_reads_them) {
  EXPECT_THAT(literals_of(R"(#include "a.h"
      f("one"); // "none"
      g("two \"quoted\" " /* no */, "three"
        " and" "\\");)"),
              ::testing::ElementsAre("one", "two \"quoted\" ", "three and\\"));
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

TEST(Message_Register, knows_its_messages_from_other_texts) {
  EXPECT_TRUE(is_registered("Missing \"triggers\" array."));
  EXPECT_TRUE(is_registered("All \"id\" values must be unique, 7 is duplicated."));
  EXPECT_FALSE(is_registered("Missing \"triggers\" array"));
  EXPECT_FALSE(is_registered(""));
}

TEST(Rejection_Of_A_Document, counts_as_asserted_when_its_whole_text_was_the_expected_one) {
  Message_Tally asserted;
  const Rejection rejection("Missing \"triggers\" array.", asserted);

  EXPECT_FALSE(rejection == "Missing \"triggers\" array");
  EXPECT_FALSE(rejection == "\"tags\" must be a JSON object.");
  EXPECT_FALSE(rejection == "");
  EXPECT_THAT(asserted.met_less_than(1), SizeIs(registered_messages().size()));

  EXPECT_TRUE(rejection == "Missing \"triggers\" array.");
  EXPECT_EQ(asserted.counts().at("Missing \"triggers\" array."), 1);
  EXPECT_THAT(asserted.met_less_than(1), SizeIs(registered_messages().size() - 1));
}

TEST(Rejection_Of_A_Document, asserts_no_message_with_a_text_of_others) {
  Message_Tally asserted;
  EXPECT_TRUE(Rejection("A tag filter must be a JSON object.", asserted) ==
              "A tag filter must be a JSON object.");
  EXPECT_THAT(asserted.met_less_than(1), SizeIs(registered_messages().size()));
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
