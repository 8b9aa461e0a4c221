// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/site_records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "operations/small_site.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora::operations;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;

using Ids = Site_Records::Ids;

class Site_Records_Test : public Small_Site {
 protected:
  Site_Records read() { return read_site_records(database()); }
};

TEST_F(Site_Records_Test, say_who_listens_where) {
  site.given_generic_subscription(4);
  site.store_in(database());
  apply({a_trigger(9, on_topic("a") + "," + on_object("car")),
         a_trigger(7, on_topic("a") + "," + on_topic("b"), at_gate),
         a_trigger(8, on_subscriptions, R"("eventSubscription": {"door": null})")});

  const Site_Records records = read();

  EXPECT_THAT(records.triggers, ElementsAre(Key(7), Key(8), Key(9)));
  EXPECT_EQ(records.triggers.at(7).name, "trigger 7");
  EXPECT_EQ(records.triggers.at(7).sources.size(), 2);
  EXPECT_THAT(records.topics,
              ElementsAre(Pair(10, ElementsAre(Pair("a", Ids{7, 9}), Pair("b", Ids{7}))),
                          Pair(11, ElementsAre(Pair("a", Ids{9})))));
  EXPECT_THAT(records.generic, ElementsAre(Pair(3, Ids{8}), Pair(4, Ids{})));
  EXPECT_THAT(records.detection, ElementsAre(Pair(10, Ids{9}), Pair(11, Ids{9})));
}

TEST_F(Site_Records_Test, leave_out_what_is_damaged) {
  apply({a_trigger(7, on_topic("a") + "," + on_topic("b"))});
  foreign_program().execute("UPDATE subscription SET onvif_topic = NULL WHERE onvif_topic = 'b'");

  const Site_Records records = read();

  EXPECT_THAT(records.topics, ElementsAre(Pair(10, ElementsAre(Pair("a", Ids{7}))),
                                          Pair(11, ElementsAre(Pair("a", Ids{7})))));
  EXPECT_THAT(records.generic, ElementsAre(Pair(3, IsEmpty())));
}

TEST_F(Site_Records_Test, are_searched_by_trigger_and_place) {
  Site_Records records;
  records.topics[10]["a"] = {7, 9};
  records.generic[3] = {8};
  records.detection[11] = {6};

  EXPECT_TRUE(is_subscribed(records, 9, 10, "a"));
  EXPECT_FALSE(is_subscribed(records, 8, 10, "a"));
  EXPECT_FALSE(is_subscribed(records, 7, 10, "b"));
  EXPECT_FALSE(is_subscribed(records, 7, 11, "a"));
  EXPECT_TRUE(is_joined(records, 8, 3));
  EXPECT_FALSE(is_joined(records, 7, 3));
  EXPECT_FALSE(is_joined(records, 8, 4));
  EXPECT_TRUE(is_detected(records, 6, 11));
  EXPECT_FALSE(is_detected(records, 7, 11));
  EXPECT_FALSE(is_detected(records, 6, 10));
}

}  // namespace
}  // namespace kuv::test
