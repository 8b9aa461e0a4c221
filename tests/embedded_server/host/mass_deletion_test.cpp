// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/mass_deletion.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/testing/mocks/mock_capture_manager.h"
#include "vemora/testing/mocks/mock_trigger_notification_pusher.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::StrictMock;
using Status = Pass_Outcome::Status;

TEST(Mass_Deletion_Test, is_more_than_half_and_at_least_ten) {
  EXPECT_TRUE(is_mass_deletion({10, 10}));
  EXPECT_TRUE(is_mass_deletion({10, 19}));
  EXPECT_TRUE(is_mass_deletion({11, 21}));
  EXPECT_FALSE(is_mass_deletion({10, 20}));
  EXPECT_FALSE(is_mass_deletion({11, 22}));
  EXPECT_FALSE(is_mass_deletion({9, 9}));
  EXPECT_FALSE(is_mass_deletion({9, 10}));
  EXPECT_FALSE(is_mass_deletion({0, 0}));
  EXPECT_FALSE(is_mass_deletion({0, 1000}));
}

TEST(Mass_Deletion_Test, names_each_kind_with_its_counts) {
  Deletions deletions;
  deletions.triggers = {12, 14};
  deletions.topic_subscriptions = {9, 9};
  EXPECT_EQ(describe(find_mass_deletions(deletions)), "12 of 14 triggers");
  deletions.topic_subscriptions = {40, 44};
  EXPECT_EQ(describe(find_mass_deletions(deletions)),
            "12 of 14 triggers and 40 of 44 topic subscriptions");
}

TEST(Mass_Deletion_Test, judges_every_kind) {
  Deletions deletions;
  deletions.cameras = {10, 11};
  deletions.servers = {11, 12};
  deletions.schedules = {12, 13};
  deletions.categories = {13, 14};
  deletions.generic_subscriptions = {14, 15};
  deletions.object_types = {15, 16};
  EXPECT_EQ(describe(find_mass_deletions(deletions)),
            "10 of 11 cameras and 11 of 12 servers and 12 of 13 schedules and 13 of 14 event "
            "categories and 14 of 15 generic subscriptions and 15 of 16 general object types");
}

/// A site of twelve cameras, and a host whose services nobody may call unexpectedly.
class Guarded_Host_Test : public testing::TestWithParam<Database_Engine>, public Database_Fixture {
 protected:
  Guarded_Host_Test() : Database_Fixture(GetParam()) {
    site.given_server(server_id);
    for (std::uint64_t id = 10; id < 22; ++id) {
      site.given_camera(id).with_topic("a").detecting_objects();
    }
    site.store_in(database());
  }

  /// Triggers that listen to topic "a" everywhere.
  static Json_Document triggers(std::uint64_t first, std::uint64_t behind) {
    std::vector<std::string> texts;
    for (std::uint64_t id = first; id < behind; ++id) {
      texts.push_back(fmt::format(
          R"({{"id": {}, "name": "", "tags": {{}}, "sources": [
              {{"type": "onvif-metadata", "onvifTopic": "a"}},
              {{"type": "object-detection", "searchItem": {{"type": "car"}}}}]}})",
          id));
    }
    return Json_Document(fmt::format(R"({{"triggers": [{}]}})", fmt::join(texts, ", ")));
  }

  void given_applied(const Json_Document& config) {
    ASSERT_EQ(Trigger_Host(database(), server_id).apply(config, nullptr).status, Status::done);
  }

  Trigger_Host guarded_host() {
    return Trigger_Host(database(), server_id, {capture_manager, pusher, nullptr, false, true});
  }

  std::shared_ptr<StrictMock<Mock_Capture_Manager>> capture_manager =
      std::make_shared<StrictMock<Mock_Capture_Manager>>();
  std::shared_ptr<StrictMock<Mock_Trigger_Notification_Pusher>> pusher =
      std::make_shared<StrictMock<Mock_Trigger_Notification_Pusher>>();
  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Guarded_Host_Test, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Guarded_Host_Test, changes_nothing_and_tells_nobody_when_a_pass_is_refused) {
  given_applied(triggers(1, 13));
  const auto before = foreign_program().everything();
  Trigger_Host host = guarded_host();
  const Pass_Outcome outcome = host.apply(triggers(0, 0), nullptr);
  EXPECT_EQ(outcome.status, Status::refused);
  ASSERT_EQ(outcome.errors.size(), 1U);
  EXPECT_EQ(outcome.errors[0].message,
            "This pass would delete 12 of 12 triggers and 12 of 12 topic subscriptions.");
  EXPECT_TRUE(outcome.changes.empty());
  EXPECT_TRUE(outcome.reconciled.empty());
  EXPECT_FALSE(outcome.state);
  EXPECT_EQ(host.kept(), Kept::nothing);
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Guarded_Host_Test, tells_the_services_of_the_next_pass_again) {
  given_applied(triggers(1, 13));
  Trigger_Host host = guarded_host();
  ASSERT_EQ(host.apply(triggers(0, 0), nullptr).status, Status::refused);
  EXPECT_CALL(*pusher, apply_trigger_state(_));
  EXPECT_EQ(host.refresh().status, Status::done);
}

TEST_P(Guarded_Host_Test, lets_other_passes_go_on) {
  given_applied(triggers(1, 13));
  ASSERT_EQ(guarded_host().apply(triggers(0, 0), nullptr).status, Status::refused);
  EXPECT_EQ(Trigger_Host(open_again(std::chrono::milliseconds(0)), server_id).refresh().status,
            Status::done);
}

TEST_P(Guarded_Host_Test, lets_a_pass_be_that_deletes_little) {
  given_applied(triggers(1, 13));
  EXPECT_CALL(*pusher, apply_trigger_state(_));
  const Pass_Outcome outcome = guarded_host().apply(triggers(1, 12), nullptr);
  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_EQ(outcome.changes.triggers.deleted, std::vector<std::uint64_t>{12});
}

TEST_P(Guarded_Host_Test, judges_a_first_pass_as_well) {
  EXPECT_CALL(*pusher, apply_trigger_state(_));
  EXPECT_CALL(*capture_manager, reconcile_metadata_stream(_)).Times(12);
  EXPECT_EQ(guarded_host().apply(triggers(1, 3), nullptr).status, Status::done);
}

/// Makes a plan of a host whose services nobody may call.
TEST_P(Guarded_Host_Test, tells_nobody_of_a_plan_and_says_what_would_be_refused) {
  given_applied(triggers(1, 13));
  const auto before = foreign_program().everything();
  int looks = 0;
  const Plan_Observer observer{[&looks] { ++looks; }, [&looks](const Pass_Outcome&) { ++looks; }};
  const Pass_Outcome outcome = guarded_host().plan(triggers(0, 0), nullptr, observer);
  EXPECT_EQ(looks, 2);
  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_EQ(describe(outcome.mass_deletions), "12 of 12 triggers and 12 of 12 topic subscriptions");
  EXPECT_EQ(outcome.changes.triggers.deleted.size(), 12U);
  EXPECT_EQ(outcome.reconciled.size(), 12U);
  EXPECT_TRUE(outcome.state);
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Guarded_Host_Test, plans_while_another_pass_is_open) {
  given_applied(triggers(1, 13));
  const auto elsewhere = open_again();
  std::optional<Pass_Outcome> outcome;
  const Pass_Scope pass(database(), server_id);
  std::thread([&] {
    const Trigger_Host host(elsewhere, server_id);
    outcome = host.plan(triggers(1, 3), nullptr, {[] {}, [](const Pass_Outcome&) {}});
  }).join();
  ASSERT_TRUE(outcome);
  EXPECT_EQ(outcome->changes.triggers.deleted.size(), 10U);
}

TEST_P(Guarded_Host_Test, refuses_a_pass_that_somebody_objects_to) {
  given_applied(triggers(1, 13));
  const auto before = foreign_program().everything();
  const Pass_Outcome outcome =
      guarded_host().apply(triggers(1, 3), nullptr, [] { return "not today"; });
  EXPECT_EQ(outcome.status, Status::refused);
  ASSERT_EQ(outcome.errors.size(), 1U);
  EXPECT_EQ(outcome.errors[0].message, "not today");
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Guarded_Host_Test, refuses_nothing_unless_it_is_asked_to) {
  given_applied(triggers(1, 13));
  given_applied(triggers(0, 0));
  EXPECT_EQ(foreign_program().count("trigger_record"), 0U);
}

}  // namespace
}  // namespace kuv::test
