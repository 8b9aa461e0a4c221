// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "operations/match/records_of_listeners.h"
#include "operations/small_site.h"
#include "vemora/operations/match/match.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Compared_Events : public Small_Site {
 protected:
  Compared_Counts compare(const std::vector<Event>& events, const std::vector<std::string>& others,
                          const std::function<void()>& after_events = nullptr) {
    auto next = events.begin();
    return compare_events(database(), server_id, Json_Document(config_of(others)), nullptr,
                          [&]() -> std::optional<Event> {
                            if (next != events.end()) {
                              return *next++;
                            }
                            if (after_events) {
                              after_events();
                            }
                            return std::nullopt;
                          });
  }

  /// "7 at camera 10, 3 events: code"
  static std::vector<std::string> rows_of(const std::vector<Changed_Listening>& changed) {
    std::vector<std::string> rows;
    for (const Changed_Listening& change : changed) {
      std::string row = std::to_string(change.trigger_id) + " at";
      row += change.camera_id ? " camera " + std::to_string(*change.camera_id) : "";
      row +=
          change.subscription_id ? " subscription " + std::to_string(*change.subscription_id) : "";
      row += ", " + std::to_string(change.events) + " events:";
      for (const std::string& code : codes_of(change.reasons)) {
        row += " " + code;
      }
      rows.push_back(row);
    }
    return rows;
  }
};

TEST_F(Compared_Events, name_what_each_trigger_gains_and_loses_by_place_and_why) {
  apply({a_trigger(7, on_topic("a")), a_trigger(8, on_subscriptions),
         a_trigger(9, on_topic("a") + "," + on_object("car"), at_gate)});

  const Compared_Counts compared =
      compare({topic(10, "a"), topic(10, "a"), topic(11, "a"), object(10, "car"),
               of_subscription(3), topic(12, "a"), motion(10), topic(10, "b"), topic(10, "b")},
              {a_trigger(6, std::string(on_subscriptions) + "," + on_topic("b")),
               a_trigger(7, on_topic("a"), at_gate), a_trigger(9, on_topic("a"))});

  EXPECT_EQ(compared.counts.events, 9);
  EXPECT_EQ(compared.counts.unheard, 4);
  EXPECT_THAT(compared.counts.triggers, ElementsAre(Pair(7, 3), Pair(8, 1), Pair(9, 3)));
  EXPECT_THAT(rows_of(compared.gained),
              ElementsAre("6 at camera 10, 2 events: not-in-configuration",
                          "6 at subscription 3, 1 events: not-in-configuration",
                          "9 at camera 11, 1 events: camera-filter"));
  EXPECT_THAT(rows_of(compared.lost),
              ElementsAre("7 at camera 11, 1 events: camera-filter",
                          "8 at subscription 3, 1 events: not-in-configuration",
                          "9 at camera 10, 1 events: no-such-source"));
}

TEST_F(Compared_Events, change_nothing_where_the_documents_say_the_same) {
  apply({a_trigger(7, on_topic("a"))});

  const Compared_Counts compared =
      compare({topic(10, "a"), motion(10)}, {a_trigger(7, on_topic("a"))});

  EXPECT_THAT(compared.counts.triggers, ElementsAre(Pair(7, 1)));
  EXPECT_EQ(compared.counts.unheard, 1);
  EXPECT_THAT(compared.gained, IsEmpty());
  EXPECT_THAT(compared.lost, IsEmpty());
}

TEST_F(Compared_Events, are_gained_by_a_refresh_where_the_records_are_behind_their_documents) {
  apply({a_trigger(7, on_topic("a"))});
  foreign_program().execute("DELETE FROM subscription_trigger");

  const Compared_Counts compared = compare({topic(10, "a")}, {a_trigger(7, on_topic("a"))});

  EXPECT_THAT(rows_of(compared.gained), ElementsAre("7 at camera 10, 1 events: not-refreshed"));
}

/// The reasons of what is gained and of what is lost are about the state that the events were
/// compared with, whatever is written while they are read.
TEST_F(Compared_Events, are_explained_from_the_state_that_they_are_compared_in) {
  apply({a_trigger(7, on_topic("a"), at_gate), a_trigger(8, on_topic("a"))});

  const Compared_Counts compared =
      compare({topic(10, "a"), topic(11, "a")},
              {a_trigger(7, on_topic("a")), a_trigger(8, on_topic("a"), at_gate)}, [this] {
                std::thread([this] {
                  site.given_camera(11).without_tag("area").with_tag("area", "roof");
                  site.store_in(database());
                  apply({});
                }).join();
              });

  ASSERT_EQ(compared.gained.size(), 1);
  EXPECT_THAT(texts_of(compared.gained[0].reasons),
              ElementsAre("camera-filter: The camera filter asks for area=gate; camera 11 has "
                          "area=dock."));
  ASSERT_EQ(compared.lost.size(), 1);
  EXPECT_THAT(texts_of(compared.lost[0].reasons),
              ElementsAre("camera-filter: The camera filter asks for area=gate; camera 11 has "
                          "area=dock."));
}

TEST_F(Compared_Events, leave_the_site_as_it_is) {
  apply({a_trigger(7, on_topic("a"))});
  const auto before = foreign_program().everything();

  compare({topic(10, "a")}, {a_trigger(8, on_topic("b"))});

  EXPECT_EQ(foreign_program().everything(), before);
}

class Counted_Events : public Small_Site {};

TEST_F(Counted_Events, are_counted_for_each_trigger_that_is_told_of_them) {
  apply({a_trigger(7, on_topic("a")), a_trigger(8, on_object("vehicle"))});
  const std::vector<Event> events{topic(10, "a"), topic(11, "a"), object(11, "truck"),
                                  topic(10, "b"), motion(10),     of_subscription(3)};
  auto next = events.begin();

  const Event_Counts counts = count_events(database(), server_id, [&] {
    return next == events.end() ? std::nullopt : std::make_optional(*next++);
  });

  EXPECT_EQ(counts.events, 6);
  EXPECT_EQ(counts.unheard, 3);
  EXPECT_THAT(counts.triggers, ElementsAre(Pair(7, 2), Pair(8, 1)));
}

}  // namespace
}  // namespace kuv::test
