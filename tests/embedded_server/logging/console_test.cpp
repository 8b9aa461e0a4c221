// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/logging/console.h"

#include <gmock/gmock.h>

#include <boost/log/core.hpp>
#include <sstream>
#include <thread>

#include "vemora/embedded_server/logging/unstored_lines.h"
#include "vemora/platform/logging/source.h"

namespace kuv::test {
namespace {

using kuv::logging::log_to;
using kuv::logging::name_of;
using kuv::logging::parse_severity;
using kuv::logging::severity_level;
using kuv::logging::Source;
using kuv::logging::Unstored_Lines;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

/// The date and the time of day, whose fraction is left out when it is zero.
constexpr const char* time_of_line =
    "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}(\\.[0-9]{6})? ";

class Console : public testing::Test {
 protected:
  ~Console() override {
    log_to(written, std::nullopt);
    boost::log::core::get()->set_logging_enabled(true);  // for the tests after this one
  }

  void when_each_level_is_logged() {
    for (int level = 0; level <= 6; ++level) {
      source.log(static_cast<severity_level>(level), "level {}", level);
    }
  }

  /// What was written, by lines, without the time that each begins with.
  std::vector<std::string> lines() const {
    std::vector<std::string> found;
    std::istringstream stream(written.str());
    for (std::string line; std::getline(stream, line);) {
      found.push_back(line.substr(line.find(' ') + 1));
    }
    return found;
  }

  std::ostringstream written;
  Source source{"Trigger_Manager"};
};

TEST_F(Console, writes_the_time_the_level_the_channel_and_the_text) {
  log_to(written, severity_level::trace);

  source.log(severity_level::error, "Trigger {}: {}", 7, "failed");

  EXPECT_THAT(written.str(), MatchesRegex(time_of_line + std::string("\\[error\\] Trigger_Manager: "
                                                                     "Trigger 7: failed\n")));
}

TEST_F(Console, marks_the_lines_of_a_thread_that_stores_nothing) {
  log_to(written, severity_level::trace);

  {
    const Unstored_Lines outer;
    source.log(severity_level::info, "one");
    {
      const Unstored_Lines inner;
      source.log(severity_level::info, "two");
    }
    source.log(severity_level::info, "three");
    std::thread([this] { source.log(severity_level::info, "elsewhere"); }).join();
  }
  source.log(severity_level::info, "four");

  EXPECT_THAT(lines(),
              ElementsAre("[info] Trigger_Manager (nothing is stored): one",
                          "[info] Trigger_Manager (nothing is stored): two",
                          "[info] Trigger_Manager (nothing is stored): three",
                          "[info] Trigger_Manager: elsewhere", "[info] Trigger_Manager: four"));
}

TEST_F(Console, names_every_level) {
  log_to(written, severity_level::trace);

  when_each_level_is_logged();
  source.log(static_cast<severity_level>(7), "of no name");

  EXPECT_THAT(lines(),
              ElementsAre("[trace] Trigger_Manager: level 0", "[debug] Trigger_Manager: level 1",
                          "[detail] Trigger_Manager: level 2", "[info] Trigger_Manager: level 3",
                          "[warning] Trigger_Manager: level 4", "[error] Trigger_Manager: level 5",
                          "[fatal] Trigger_Manager: level 6", "[-] Trigger_Manager: of no name"));
}

TEST_F(Console, leaves_out_what_is_below_the_level_that_was_asked_for) {
  log_to(written, severity_level::error);

  when_each_level_is_logged();

  EXPECT_THAT(lines(),
              ElementsAre("[error] Trigger_Manager: level 5", "[fatal] Trigger_Manager: level 6"));
}

TEST_F(Console, writes_one_line_a_record_that_no_name_can_spoil) {
  log_to(written, severity_level::trace);
  Source hostile("Trigger\nManager");

  source.log(severity_level::error, "Trigger 7: {}",
             "x\n2026-11-22T00:00:00 [fatal] Trigger_Manager: forged\r");
  source.log(severity_level::info, "{}", "\x1b[2J\x07 \u009b1m \u202eevil\u202c \u200b\xff");
  source.log(severity_level::info, "{}", std::string("T\u00fcr \u95e8\0 \\x1b", 14));
  hostile.log(severity_level::info, "text");

  EXPECT_THAT(
      lines(),
      ElementsAre("[error] Trigger_Manager: Trigger 7: "
                  "x\\x0a2026-11-22T00:00:00 [fatal] Trigger_Manager: forged\\x0d",
                  "[info] Trigger_Manager: \\x1b[2J\\x07 \\u009b1m \\u202eevil\\u202c \\u200b\\xff",
                  "[info] Trigger_Manager: T\u00fcr \u95e8\\x00 \\x1b",
                  "[info] Trigger\\x0aManager: text"));
}

TEST_F(Console, goes_to_one_stream_at_a_time) {
  std::ostringstream before;
  log_to(before, severity_level::trace);
  log_to(written, severity_level::fatal);

  when_each_level_is_logged();

  EXPECT_EQ(before.str(), "");
  EXPECT_THAT(lines(), ElementsAre("[fatal] Trigger_Manager: level 6"));
}

TEST_F(Console, is_quiet_without_a_level) {
  log_to(written, severity_level::trace);
  log_to(written, std::nullopt);

  when_each_level_is_logged();

  EXPECT_THAT(lines(), IsEmpty());
  EXPECT_FALSE(boost::log::core::get()->get_logging_enabled());
}

TEST(Level_Names, lead_to_their_levels_and_back) {
  for (int level = 0; level <= 6; ++level) {
    const auto severity = static_cast<severity_level>(level);
    EXPECT_EQ(parse_severity(name_of(severity)), severity) << level;
  }
  for (const char* name : {"", "off", "Error", "error ", "-"}) {
    EXPECT_EQ(parse_severity(name), std::nullopt) << name;
  }
  for (const int level : {-1, 7}) {
    EXPECT_EQ(name_of(static_cast<severity_level>(level)), "-");
  }
}

}  // namespace
}  // namespace kuv::test
