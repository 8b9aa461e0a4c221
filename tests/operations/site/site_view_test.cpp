// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/site_view.h"

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

class Site_View_Test : public Small_Site {};

TEST_F(Site_View_Test, shows_the_records_as_they_are_and_as_a_refresh_would_make_them) {
  apply({a_trigger(7, on_topic("a"))});
  foreign_program().execute("DELETE FROM subscription_trigger");

  const Site_View view(database(), server_id);

  EXPECT_FALSE(is_subscribed(view.stored(), 7, 10, "a"));
  EXPECT_TRUE(is_subscribed(view.refreshed(), 7, 10, "a"));
  EXPECT_EQ(view.here().name, "one");
  EXPECT_THAT(view.cameras(), ElementsAre(Key(10), Key(11)));
  EXPECT_THAT(view.subscriptions(), ElementsAre(Key(3)));
  EXPECT_TRUE(view.has_config());
}

TEST_F(Site_View_Test, knows_when_no_configuration_is_stored) {
  EXPECT_FALSE(Site_View(database(), server_id).has_config());
}

TEST_F(Site_View_Test, turns_from_other_documents_to_the_stored_ones_and_to_the_stored_records) {
  apply({a_trigger(7, on_topic("a")), a_trigger(9, on_subscriptions)},
        R"({"triggerMapping": [{"scheduleIds": [1], "triggerIds": [7]}]})");
  const Json_Document others(config_of({a_trigger(8, on_topic("b") + "," + on_motion)}));
  const Json_Document mapping(R"({"triggerMapping": []})");

  Site_View view(database(), server_id, &others, &mapping);

  EXPECT_THAT(view.refreshed().triggers, ElementsAre(Key(8)));
  EXPECT_THAT(view.refreshed().topics, ElementsAre(Pair(10, ElementsAre(Pair("b", Ids{8})))));
  EXPECT_THAT(view.refreshed().generic, ElementsAre(Pair(3, IsEmpty())));
  EXPECT_THAT(view.refreshed().detection, ElementsAre(Pair(10, Ids{8})));
  EXPECT_EQ(view.triggers().size(), 1);
  EXPECT_EQ(view.mapping()["triggerMapping"].size(), 0);

  view.turn_to_stored_documents();

  EXPECT_THAT(view.refreshed().triggers, ElementsAre(Key(7), Key(9)));
  EXPECT_EQ(view.refreshed().topics, view.stored().topics);
  EXPECT_EQ(view.refreshed().generic, view.stored().generic);
  EXPECT_THAT(view.refreshed().generic, ElementsAre(Pair(3, Ids{9})));
  EXPECT_THAT(view.refreshed().detection, IsEmpty());
  EXPECT_EQ(view.triggers().size(), 2);
  EXPECT_EQ(view.mapping()["triggerMapping"].size(), 1);
}

}  // namespace
}  // namespace kuv::test
