// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <new>
#include <optional>
#include <stdexcept>

#include "support/stub_platform/stub_platform.h"
#include "trigger_parser/parser_test.h"
#include "trigger_parser/told_faults.h"
#include "vemora/platform/errors/vemora_error.h"

// The parser over a platform of stubs: which functions of the server's libraries it calls, and what
// it does when they do what the server's own never would.

namespace kuv::test {
namespace {

using stub_platform::Function;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// What no standard handler knows.
struct Power_Failure {};

struct Parser_Over_Stubs : Parser_Test {
  /// Every call from now on of which the text begins so throws.
  template <class Fault>
  void given_failing(const std::string& beginning, const Fault& fault) {
    listening.reset();
    listening.emplace([beginning, fault](Function, const std::string& call) {
      if (call.compare(0, beginning.size(), beginning) == 0) {
        throw fault;
      }
    });
  }

  /// The calls that an action makes.
  template <class Action>
  std::vector<std::string> calls_of(Action action) {
    std::vector<std::string> calls;
    const stub_platform::Listening noting(
        [&calls](Function, const std::string& call) { calls.push_back(call); });
    action();
    return calls;
  }

  void parse_trigger_with(const std::string& key, const std::string& text) {
    parse_configs(configuration({with(a_trigger(), key, text)}));
  }

  std::optional<stub_platform::Listening> listening;
};

// Construction

TEST_F(Parser_Over_Stubs, opens_its_log_source_and_calls_nobody_else) {
  EXPECT_THAT(calls_of([&] { const Vemora_Trigger_Parser another(repository, 9); }),
              ElementsAre(R"(init_ "Trigger_Parser" "")"));
}

// The type of a source

/// Sources of two types, of which the first is going to fail.
constexpr char two_types[] =
    R"([{"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"}])";

struct Failing_Type_Conversion : Parser_Over_Stubs {
  template <class Fault>
  void expect_source_skipped_after(const Fault& fault) {
    given_failing("convert onvif-metadata", fault);
    const Trigger_Config config =
        parse_only_config(configuration({a_trigger_with_sources(two_types)}));
    ASSERT_THAT(config.sources, SizeIs(1));
    EXPECT_EQ(config.sources.begin()->type, Trigger_Source_Type::metadata_event);
    EXPECT_THAT(log.lines(), IsEmpty());
  }
};

TEST_F(Failing_Type_Conversion, skips_the_source_whatever_is_thrown) {
  expect_source_skipped_after(std::invalid_argument("no such type"));
  expect_source_skipped_after(std::runtime_error("the names cannot be read"));
  expect_source_skipped_after(std::bad_alloc());
  expect_source_skipped_after(Backend_Error<std::runtime_error>("no such type", 245760));
  expect_source_skipped_after(Power_Failure());
  expect_source_skipped_after(7);
}

TEST_F(Failing_Type_Conversion, drops_a_trigger_of_which_no_source_is_left) {
  given_failing("convert", Power_Failure());

  EXPECT_THAT(parse_configs(configuration({a_trigger(7), a_trigger(7)})), IsEmpty());
}

struct Type_Of_Another_Server : Parser_Over_Stubs {
  /// A source that has every field, of the type of that value.
  static std::string source(const std::string& value) {
    return R"({"onvifTopic": 5, "searchItem": "none", "activityDuration": [], "type": ")" + value +
           "\"}";
  }
};

TEST_F(Type_Of_Another_Server, is_kept_and_none_of_its_fields_is_read) {
  for (const std::string value : {"6", "7", "2147483647", "-1", "-2147483648"}) {
    SCOPED_TRACE(value);
    const Trigger_Source parsed = parse_source(source(value));
    EXPECT_EQ(std::to_string(static_cast<std::int32_t>(parsed.type)), value);
    EXPECT_FALSE(parsed.onvif_topic);
    EXPECT_FALSE(parsed.search_item);
    EXPECT_FALSE(parsed.activity_duration);
  }
}

TEST_F(Type_Of_Another_Server, is_there_once_in_a_trigger) {
  EXPECT_THAT(parse_only_config(configuration({a_trigger_with_sources("[" + source("6") + "," +
                                                                      source("-1") + "]")}))
                  .sources,
              SizeIs(2));
  EXPECT_EQ(rejection_of_configs(configuration(
                {a_trigger_with_sources("[" + source("6") + "," + source("6") + "]")})),
            "Duplicate entry in \"sources\" detected.");
}

// Tag filters

struct Failing_Tag_Library : Parser_Over_Stubs {
  void parse_filters() {
    parse_trigger_with("tags", R"({"server": {"a": "1"}, "camera": {"b": "2"}})");
  }

  void expect_fault_unchanged(const std::string& failing_call) {
    given_failing(failing_call, Power_Failure());
    EXPECT_THROW(parse_filters(), Power_Failure);

    given_failing(failing_call, std::runtime_error("out of order"));
    try {
      parse_filters();
      FAIL() << "nothing was thrown";
    } catch (const Vemora_Error<std::exception>&) {
      FAIL() << "it became another error";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "out of order");
    }
  }
};

TEST_F(Failing_Tag_Library, lets_faults_of_the_converter_through_unchanged) {
  expect_fault_unchanged("parse_search_tags");
}

TEST_F(Failing_Tag_Library, is_told_of_at_the_filter_that_it_was_given) {
  given_failing("parse_search_tags", std::runtime_error("no filter of ours"));
  const std::string text = R"({"triggers": [{"id": 7, "name": "", "anyTime": 1, "sources": [],
      "tags": {"server": null, "camera": {"a": "1"}, "eventSubscription": [2]}}]})";
  Told_Faults told;
  parser.parse_trigger_configs(json(text), {}, told);

  ASSERT_THAT(told.all, SizeIs(4));
  EXPECT_EQ(told.all[0].message, "no filter of ours");
  EXPECT_EQ(told.all[0].offset, text.find("{\"a\""));
  EXPECT_EQ(told.all[0].index, 0);
  EXPECT_EQ(told.all[0].id, 7);
  EXPECT_EQ(told.all[1].message, "no filter of ours");
  EXPECT_EQ(told.all[1].offset, text.find("[2]"));
  EXPECT_EQ(told.all[2].message, "\"sources\" array is empty.");
}

TEST_F(Failing_Tag_Library,
       says_nothing_of_a_filter_when_it_has_no_memory_or_throws_what_is_no_error) {
  Told_Faults told;
  const Json::Value document =
      configuration({with(a_trigger(), "tags", R"({"server": {"a": "1"}})")});
  given_failing("parse_search_tags", std::bad_alloc());
  EXPECT_THROW(parser.parse_trigger_configs(document, {}, told), std::bad_alloc);
  given_failing("parse_search_tags", Power_Failure());
  EXPECT_THROW(parser.parse_trigger_configs(document, {}, told), Power_Failure);
  EXPECT_THAT(told.all, IsEmpty());
}

TEST_F(Failing_Tag_Library, is_heard_unchanged_where_nobody_wants_more) {
  given_failing("parse_search_tags", std::out_of_range("too far"));
  Told_Faults told(1);
  EXPECT_THROW(
      parser.parse_trigger_configs(
          configuration({with(a_trigger(), "tags", R"({"server": {"a": "1"}})")}), {}, told),
      std::out_of_range);
  EXPECT_THAT(told.all, SizeIs(1));
}

TEST_F(Failing_Tag_Library, lets_faults_of_the_match_through_unchanged) {
  expect_fault_unchanged("matches_any");
}

TEST_F(Parser_Over_Stubs, has_each_filter_that_is_given_converted_once) {
  EXPECT_THAT(calls_of([&] { parse_trigger_with("tags", R"({"server": null, "camera": {}})"); }),
              ElementsAre("parse_search_tags", "convert metadata-event", "matches_any of 0 terms"));
}

TEST_F(Parser_Over_Stubs, matches_the_server_for_no_trigger_whose_id_is_a_duplicate) {
  const std::vector<std::string> calls = calls_of([&] {
    EXPECT_EQ(rejection_of_configs(configuration({a_trigger(7), a_trigger(7)})),
              "All \"id\" values must be unique, 7 is duplicated.");
  });

  EXPECT_THAT(calls, ElementsAre("convert metadata-event", "matches_any of 0 terms",
                                 "convert metadata-event"));
}

TEST_F(Parser_Over_Stubs, matches_the_server_once_for_every_trigger_that_it_keeps) {
  given_server_tags({{"site", {"north"}}});
  const auto trigger = [](std::uint64_t id, const char* type, const char* filter) {
    const std::string sources = std::string(R"([{"type": ")") + type + "\"}]";
    const std::string tags = std::string(R"({"server": )") + filter + "}";
    return with(with(a_trigger(id), "sources", sources), "tags", tags);
  };
  const Json::Value document =
      configuration({trigger(1, "6", R"({"site": "north"})"),
                     trigger(2, "external", R"({"site": "north", "role": "gate"})"),
                     trigger(3, "7", R"({"site": "south", "role": "gate", "door": "main"})")});

  std::vector<Trigger_Config> configs;
  const std::vector<std::string> calls = calls_of([&] { configs = parse_configs(document); });

  EXPECT_THAT(calls, ElementsAre("parse_search_tags", "convert 6", "matches_any of 1 terms",
                                 "parse_search_tags", "convert external",  //
                                 "parse_search_tags", "convert 7", "matches_any of 3 terms"));
  ASSERT_THAT(configs, SizeIs(2));
  EXPECT_TRUE(configs[0].matches_server);
  EXPECT_FALSE(configs[1].matches_server);
}

}  // namespace
}  // namespace kuv::test
