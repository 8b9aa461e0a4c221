// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/pass_phase.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>

namespace kuv::vemora::embedded_server {
namespace {

using Phase = Pass_Phase;
using Event = Pass_Event;

constexpr std::array<Event, 5> events{Event::write, Event::commit, Event::fault, Event::loss,
                                      Event::doubt};

Phase after(std::initializer_list<Event> passed) {
  Phase phase = Phase::working;
  for (const Event event : passed) {
    phase = next(phase, event);
  }
  return phase;
}

TEST(A_Pass_That_Works, is_committed_and_works_on) {
  EXPECT_EQ(after({Event::write}), Phase::working);
  EXPECT_EQ(after({Event::commit}), Phase::committed);
  EXPECT_EQ(after({Event::commit, Event::commit}), Phase::committed);
  EXPECT_EQ(after({Event::commit, Event::write}), Phase::working);
}

TEST(A_Pass_That_Fails, may_still_be_committed_as_far_as_it_came) {
  EXPECT_EQ(after({Event::fault}), Phase::faulty);
  EXPECT_EQ(after({Event::fault, Event::write}), Phase::faulty);
  EXPECT_EQ(after({Event::fault, Event::fault}), Phase::faulty);
  EXPECT_EQ(after({Event::fault, Event::commit}), Phase::over);
  EXPECT_EQ(after({Event::commit, Event::write, Event::fault}), Phase::faulty);
}

TEST(A_Pass_That_Fails, may_be_lost_or_in_doubt) {
  EXPECT_EQ(after({Event::loss}), Phase::lost);
  EXPECT_EQ(after({Event::fault, Event::loss}), Phase::lost);
  EXPECT_EQ(after({Event::doubt}), Phase::in_doubt);
  EXPECT_EQ(after({Event::fault, Event::doubt}), Phase::in_doubt);
}

TEST(A_Pass_That_Fails, loses_nothing_behind_its_last_commit) {
  for (const Event event : {Event::fault, Event::loss, Event::doubt}) {
    EXPECT_EQ(after({Event::commit, event}), Phase::over);
    EXPECT_EQ(after({Event::commit, event, Event::write}), Phase::over);
  }
}

TEST(A_Pass_That_Is_Over, stays_what_it_is) {
  for (const Phase phase : {Phase::over, Phase::lost, Phase::in_doubt}) {
    for (const Event event : events) {
      EXPECT_EQ(next(phase, event), phase);
    }
  }
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
