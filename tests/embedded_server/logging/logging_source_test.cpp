// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <stdexcept>

#include "embedded_server/logging/logging_core.h"
#include "support/log_capture.h"
#include "vemora/platform/logging/source.h"

namespace kuv::test {

// No server's library shows what a source remembers of its names. An explicit instantiation may
// name private members, which opens them to the tests.

template <class Name, typename Name::Member member>
struct Opened {
  friend typename Name::Member open(Name) { return member; }
};

struct Source_Channel {
  using Member = std::string logging::Source::*;
  friend Member open(Source_Channel);
};
template struct Opened<Source_Channel, &logging::Source::channel_>;

struct Source_Scope {
  using Member = std::string logging::Source::*;
  friend Member open(Source_Scope);
};
template struct Opened<Source_Scope, &logging::Source::scope_>;

/// Counts how often it is formatted.
struct Counted {
  int* times;
};

/// Cannot be formatted.
struct Unformattable {};

}  // namespace kuv::test

template <>
struct fmt::formatter<kuv::test::Counted> : fmt::formatter<int> {
  auto format(const kuv::test::Counted& counted, fmt::format_context& context) const {
    return fmt::formatter<int>::format(++*counted.times, context);
  }
};

template <>
struct fmt::formatter<kuv::test::Unformattable> : fmt::formatter<int> {
  auto format(const kuv::test::Unformattable&, fmt::format_context& context) const
      -> fmt::format_context::iterator {
    throw std::domain_error("no text for this");
    return context.out();
  }
};

namespace kuv::test {
namespace {

using kuv::logging::severity_level;
using kuv::logging::Source;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Logging_Source, numbers_the_severities_as_the_logging_library_does) {
  EXPECT_EQ(static_cast<int>(severity_level::debug), 1);
  EXPECT_EQ(static_cast<int>(severity_level::info), 3);
  EXPECT_EQ(static_cast<int>(severity_level::error), 5);
}

TEST(Logging_Source, writes_lines_to_its_channel_with_their_severity) {
  const Log_Capture log;
  Source manager("Trigger_Manager");
  Source parser("Trigger_Parser");

  manager.log(severity_level::info, "Refreshing the trigger config.");
  parser.log(severity_level::debug, "parsed");
  manager.log(severity_level::error, "failed");

  EXPECT_THAT(log.lines(),
              ElementsAre(Log_Line{severity_level::info, "Trigger_Manager",
                                   "Refreshing the trigger config."},
                          Log_Line{severity_level::debug, "Trigger_Parser", "parsed"},
                          Log_Line{severity_level::error, "Trigger_Manager", "failed"}));
}

TEST(Logging_Source, remembers_its_channel_and_its_scope) {
  const Source alone("Trigger_Manager");
  EXPECT_EQ(alone.*open(Source_Channel()), "Trigger_Manager");
  EXPECT_EQ(alone.*open(Source_Scope()), "");

  const Source one_of_two("Trigger_Parser", "server 9");
  EXPECT_EQ(one_of_two.*open(Source_Channel()), "Trigger_Parser");
  EXPECT_EQ(one_of_two.*open(Source_Scope()), "server 9");
}

TEST(Logging_Source, puts_arguments_in_place_of_braces) {
  const Log_Capture log;
  Source source("channel");

  source.log(severity_level::error, "Trigger {}: {} | camera ID {}", 18446744073709551615U,
             std::string("refused"), 10);

  EXPECT_THAT(log.messages(), ElementsAre("Trigger 18446744073709551615: refused | camera ID 10"));
}

TEST(Logging_Source, does_not_read_braces_in_arguments) {
  const Log_Capture log;
  Source source("channel");

  source.log(severity_level::error, "{}", "{} {0} {bad} }{ %s %n");
  source.log(severity_level::error, "Trigger {}: {}", "{}", "{{}}");

  EXPECT_THAT(log.messages(), ElementsAre("{} {0} {bad} }{ %s %n", "Trigger {}: {{}}"));
}

TEST(Logging_Source, writes_any_text_as_one_line_of_its_own) {
  using namespace std::string_literals;
  const Log_Capture log;
  Source source("channel");

  source.log(severity_level::info, "{}", "first\nsecond"s);
  source.log(severity_level::info, "{}", "T\u00fcr \u95e8"s);
  source.log(severity_level::info, "{}", "a\0b"s);
  source.log(severity_level::info, "{}", ""s);
  source.log(severity_level::info, "{}", std::string(100'000, 'x'));

  EXPECT_THAT(log.messages(), ElementsAre("first\nsecond", "T\u00fcr \u95e8", "a\0b"s, "",
                                          std::string(100'000, 'x')));
}

TEST(Logging_Source, formats_an_argument_once_for_a_line) {
  const Log_Capture one;
  const Log_Capture another;
  Source source("channel");
  int times = 0;

  source.log(severity_level::info, "{}", Counted{&times});

  EXPECT_EQ(times, 1);
  EXPECT_THAT(one.messages(), ElementsAre("1"));
  EXPECT_THAT(another.messages(), ElementsAre("1"));
}

TEST(Logging_Source, formats_nothing_while_logging_is_disabled) {
  const Log_Capture log;
  const Logging_Disabled disabled;
  Source source("channel");
  int times = 0;

  source.log(severity_level::error, "{}", Counted{&times});
  EXPECT_NO_THROW(source.log(severity_level::error, "{}", Unformattable()));
  EXPECT_NO_THROW(source.log(severity_level::error, "{} {} {", 1));

  EXPECT_EQ(times, 0);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Logging_Source, formats_nothing_that_the_core_filters) {
  const Log_Capture log;
  const Lines_Filtered_Below filter(severity_level::error);
  Source source("channel");
  int times = 0;

  source.log(severity_level::info, "{}", Counted{&times});
  EXPECT_NO_THROW(source.log(severity_level::info, "{}", Unformattable()));
  EXPECT_EQ(times, 0);
  EXPECT_THAT(log.lines(), IsEmpty());

  source.log(severity_level::error, "{}", Counted{&times});
  EXPECT_EQ(times, 1);
  EXPECT_THAT(log.messages(), ElementsAre("1"));
}

TEST(Logging_Source, lets_a_failing_argument_of_a_written_line_surface) {
  const Log_Capture log;
  Source source("channel");

  EXPECT_THROW(source.log(severity_level::error, "{}", Unformattable()), std::domain_error);
  EXPECT_THROW(source.log(severity_level::error, "{} {}", 1), fmt::format_error);
  EXPECT_THAT(log.lines(), IsEmpty());

  source.log(severity_level::error, "{}", "still at work");
  EXPECT_THAT(log.messages(), ElementsAre("still at work"));
}

/// The scope of the last record that the core saw.
class Scope_Watch {
 public:
  Scope_Watch() {
    boost::log::core::get()->set_filter([this](const boost::log::attribute_value_set& values) {
      scope = boost::log::extract_or_throw<std::string>("Scope", values);
      return true;
    });
  }
  ~Scope_Watch() { boost::log::core::get()->reset_filter(); }

  std::string scope = "nothing yet";
};

TEST(Logging_Source, attaches_its_scope_to_every_record) {
  const Log_Capture log;
  const Scope_Watch watch;

  Source("channel").log(severity_level::info, "text");
  EXPECT_EQ(watch.scope, "");
  Source("channel", "second instance").log(severity_level::info, "text");
  EXPECT_EQ(watch.scope, "second instance");
}

TEST(Log_Capture_Of_A_Test, sees_only_what_is_logged_while_it_lives) {
  const Log_Capture outer;
  Source source("channel");
  source.log(severity_level::info, "before");
  {
    const Log_Capture inner;
    source.log(severity_level::info, "during");
    EXPECT_THAT(inner.messages(), ElementsAre("during"));
  }
  source.log(severity_level::error, "after");

  EXPECT_THAT(outer.messages(), ElementsAre("before", "during", "after"));
  EXPECT_THAT(outer.lines(severity_level::error),
              ElementsAre(Log_Line{severity_level::error, "channel", "after"}));
}

}  // namespace
}  // namespace kuv::test
