// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <boost/log/core.hpp>

#include "system/passes/whole_pass_test.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t camera_count = 40000;

std::string config_with_topics(const std::string& topics) {
  return R"({"triggers": [{"id": 7, "name": "all gates", "tags": {"camera": {"site": "north"}},
             "sources": [)" +
         topics + R"(, {"type": "object-detection", "searchItem": {"type": "person"}}]}]})";
}

const std::string first_and_second = R"({"type": "onvif-metadata", "onvifTopic": "first"},
                                        {"type": "onvif-metadata", "onvifTopic": "second"})";
const std::string all_three =
    first_and_second + R"(, {"type": "onvif-metadata", "onvifTopic": "third"})";

/// One trigger on every camera of a large site. Without log lines: there would be one a
/// subscription.
class Large_Site : public testing::TestWithParam<Database_Engine>, public Server_Around {
 protected:
  Large_Site() : Server_Around(GetParam()) {
    boost::log::core::get()->set_logging_enabled(false);
    site.given_server(server_id);
    for (std::uint64_t id = 1; id <= camera_count; ++id) {
      site.given_camera(id)
          .with_tag("site", "north")
          .with_topic("first")
          .with_topic("second")
          .with_topic("third")
          .detecting_objects();
    }
  }
  ~Large_Site() override { boost::log::core::get()->set_logging_enabled(true); }

  std::size_t count(const std::string& what) {
    return std::stoul(foreign_program().query("SELECT count(*) FROM " + what).at(0).at(0).value());
  }

  void expect_counts(std::size_t first, std::size_t second, std::size_t third,
                     std::size_t detection) {
    EXPECT_EQ(count("subscription WHERE onvif_topic = 'first'"), first);
    EXPECT_EQ(count("subscription WHERE onvif_topic = 'second'"), second);
    EXPECT_EQ(count("subscription WHERE onvif_topic = 'third'"), third);
    EXPECT_EQ(count("subscription_trigger WHERE linked_id = 7"), first + second + third);
    EXPECT_EQ(count("subscription_trigger"), first + second + third);
    EXPECT_EQ(count("eta_camera"), detection);
    EXPECT_EQ(count("eta_camera_trigger WHERE linked_id = 7"), detection);
    EXPECT_EQ(count("eta_camera_trigger"), detection);
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Large_Site, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Large_Site, keeps_every_camera_right) {
  Outcome outcome = update_config(config_with_topics(all_three));
  ASSERT_THAT(outcome.errors, IsEmpty());
  expect_counts(camera_count, camera_count, camera_count, camera_count);
  EXPECT_EQ(outcome.changes.subscriptions.added.size(), 3 * camera_count);
  EXPECT_EQ(outcome.reconciled.size(), camera_count);
  EXPECT_THAT(outcome.pending, IsEmpty());
  ASSERT_TRUE(outcome.state);
  EXPECT_EQ(outcome.state->onvif_topics_by_trigger.at(7).size(), camera_count);
  EXPECT_EQ(outcome.state->search_items_by_trigger.at(7).size(), camera_count);

  outcome = refresh();
  EXPECT_TRUE(outcome.changes.empty());
  EXPECT_THAT(outcome.reconciled, IsEmpty());

  outcome = update_config(config_with_topics(first_and_second));
  expect_counts(camera_count, camera_count, 0, camera_count);
  EXPECT_EQ(outcome.changes.subscriptions.deleted.size(), camera_count);
  EXPECT_EQ(outcome.reconciled.size(), camera_count);
  for (const auto& [camera_id, topics] : outcome.state->onvif_topics_by_trigger.at(7)) {
    ASSERT_THAT(topics, ElementsAre("first", "second")) << camera_id;
  }

  Site_Builder moved;
  moved.given_camera(20000) = site.given_camera(20000).without_tag("site");
  moved.store_in(database());
  outcome = refresh();
  expect_counts(camera_count - 1, camera_count - 1, 0, camera_count - 1);
  EXPECT_THAT(outcome.reconciled, ElementsAre(20000));
  EXPECT_EQ(outcome.changes.subscriptions.deleted.size(), 2U);
  EXPECT_EQ(outcome.changes.eta_cameras.deleted.size(), 1U);
  EXPECT_EQ(outcome.state->onvif_topics_by_trigger.at(7).count(20000), 0U);

  restart();
  outcome = refresh();
  EXPECT_TRUE(outcome.changes.empty());
  EXPECT_EQ(outcome.state->onvif_topics_by_trigger.at(7).size(), camera_count - 1);

  outcome = update_config(R"({"triggers": []})");
  expect_counts(0, 0, 0, 0);
  EXPECT_EQ(count("trigger_record"), 0U);
  EXPECT_EQ(outcome.reconciled.size(), camera_count - 1);
}

}  // namespace
}  // namespace kuv::test
