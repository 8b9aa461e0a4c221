// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/event_sorts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "operations/match/records_of_listeners.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Event_Sorts_Test : public testing::Test, protected Records_Of_Listeners {
 protected:
  static std::vector<std::string> counts_of(const Event_Sorts& sorts) {
    std::vector<std::string> texts;
    sorts.for_each([&texts](const Event& event, std::uint64_t count) {
      const char* const kinds[] = {"topic", "object", "motion", "subscription"};
      texts.push_back(std::to_string(event.place) + " " +
                      kinds[static_cast<std::size_t>(event.kind)] +
                      (event.text.empty() ? "" : " " + event.text) +
                      (event.in_motion ? " in motion" : "") + ": " + std::to_string(count));
    });
    return texts;
  }
};

TEST_F(Event_Sorts_Test, count_each_sort_that_somebody_may_be_told_of) {
  given_trigger(7, {searching("car"), watching_motion()});
  records.topics[10] = {{"a", {7}}, {"b", {7}}};
  records.detection = {{9, {7}}, {10, {7}}};
  records.generic[3] = {7};
  const Listeners listeners(records, resolver);
  Event_Sorts sorts({&listeners});
  for (const Event& event :
       {of_subscription(3), motion(10), object(10, "car", true), object(10, "car"), topic(10, "b"),
        topic(10, "a"), object(10, "car", true), motion(9), topic(10, "b"), topic(10, "b")}) {
    EXPECT_TRUE(sorts.count(event));
  }

  EXPECT_THAT(counts_of(sorts), ElementsAre("10 topic a: 1", "10 topic b: 3", "10 object car: 1",
                                            "10 object car in motion: 2", "9 motion: 1",
                                            "10 motion: 1", "3 subscription: 1"));
}

TEST_F(Event_Sorts_Test, take_no_memory_for_events_that_nobody_can_be_told_of) {
  given_trigger(7, {searching("car")});
  records.topics[10]["a"] = {7};
  records.detection[10] = {7};
  const Listeners listeners(records, resolver);
  Event_Sorts sorts({&listeners});
  for (std::uint64_t number = 0; number < 1'000; ++number) {
    EXPECT_FALSE(sorts.count(topic(10, "b" + std::to_string(number))));
    EXPECT_FALSE(sorts.count(topic(11 + number, "a")));
    EXPECT_FALSE(sorts.count(object(10, "type " + std::to_string(number))));
    EXPECT_FALSE(sorts.count(motion(11 + number)));
    EXPECT_FALSE(sorts.count(of_subscription(number)));
  }

  EXPECT_THAT(counts_of(sorts), IsEmpty());
}

TEST_F(Event_Sorts_Test, count_what_any_of_the_listeners_may_be_told_of) {
  records.topics[10]["a"] = {7};
  Site_Records others;
  others.topics[10]["b"] = {7};
  const Listeners listeners(records, resolver);
  const Listeners other_listeners(others, resolver);
  Event_Sorts sorts({&listeners, &other_listeners});

  EXPECT_TRUE(sorts.count(topic(10, "a")));
  EXPECT_TRUE(sorts.count(topic(10, "b")));
  EXPECT_FALSE(sorts.count(topic(10, "c")));
  EXPECT_THAT(counts_of(sorts), ElementsAre("10 topic a: 1", "10 topic b: 1"));
}

TEST_F(Event_Sorts_Test, are_added_up_by_trigger_and_what_nobody_is_told_of_is_unheard) {
  given_trigger(7, {searching("car")});
  given_trigger(8, {searching("car", true)});
  records.topics[10]["a"] = {7, 8};
  records.topics[10]["b"] = {};
  records.detection[10] = {7, 8};
  const Listeners listeners(records, resolver);
  Event_Sorts sorts({&listeners});
  for (const Event& event : {topic(10, "a"), topic(10, "a"), topic(10, "b"), object(10, "car"),
                             object(10, "car", true), motion(10), motion(10)}) {
    EXPECT_TRUE(sorts.count(event));
  }
  Event_Counts counts;
  counts.events = 100;
  counts.unheard = 20;
  counts.triggers[8] = 1'000;

  add_counts(sorts, listeners, counts);

  EXPECT_EQ(counts.events, 100);
  EXPECT_EQ(counts.unheard, 20 + 1 + 2);
  EXPECT_THAT(counts.triggers, ElementsAre(Pair(7, 2 + 1 + 1), Pair(8, 1'000 + 2 + 1)));
}

}  // namespace
}  // namespace kuv::test
