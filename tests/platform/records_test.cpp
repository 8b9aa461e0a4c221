// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <boost/property_tree/ptree.hpp>
#include <stdexcept>

#include "trigger_parser/member_order.h"
#include "vemora/platform/records/capability_document.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<trigger> a_trigger_record(std::uint64_t id) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  return record;
}

// Layout

TEST(Records, keep_their_fields_in_the_order_that_servers_were_built_with) {
  const trigger stored_trigger;
  EXPECT_TRUE(lie_in_order(stored_trigger.id, stored_trigger.name, stored_trigger.schedules,
                           stored_trigger.sources));
  const eta_camera detection;
  EXPECT_TRUE(lie_in_order(detection.id, detection.camera, detection.triggers));
  const metadata_event_subscription subscription;
  EXPECT_TRUE(lie_in_order(subscription.id, subscription.name, subscription.category,
                           subscription.onvif_topic, subscription.camera,
                           subscription.trigger_links, subscription.tags,
                           subscription.camera_links));
}

TEST(Query_Parameters, keep_their_fields_in_the_order_that_servers_were_built_with) {
  const ETA_Camera_Repository::Get_Params detection;
  EXPECT_TRUE(lie_in_order(detection.trigger, detection.cameras, detection.cameras_match));
  const Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params subscriptions;
  EXPECT_TRUE(lie_in_order(subscriptions.trigger, subscriptions.topics, subscriptions.cameras,
                           subscriptions.tags, subscriptions.trigger_match));
}

TEST(Query_Parameters, ask_for_every_record_that_holds_the_trigger_unless_told_otherwise) {
  using Params = Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;
  const ETA_Camera_Repository::Get_Params detection;
  EXPECT_EQ(detection.trigger, nullptr);
  EXPECT_THAT(detection.cameras, IsEmpty());
  EXPECT_EQ(detection.cameras_match, ETA_Camera_Repository::Get_Params::Cameras::matching);
  const Params subscriptions;
  EXPECT_EQ(subscriptions.trigger, nullptr);
  EXPECT_EQ(subscriptions.trigger_match, Params::Trigger_Match::holding);
  EXPECT_EQ(subscriptions.kind, Params::Kind::any);
  EXPECT_EQ(subscriptions.topics_and_cameras, Params::Topics_And_Cameras::matching);
  EXPECT_EQ(subscriptions.tags_match, Params::Tags::matching);
}

TEST(Records, have_no_links_when_they_are_new) {
  const metadata_event_subscription subscription;
  EXPECT_FALSE(subscription.camera);
  EXPECT_FALSE(subscription.category);
  EXPECT_FALSE(subscription.onvif_topic);
  EXPECT_THAT(subscription.trigger_ids(), IsEmpty());
  EXPECT_THAT(subscription.camera_links, IsEmpty());
  EXPECT_FALSE(eta_camera().camera);
  EXPECT_THAT(eta_camera().triggers, IsEmpty());
}

// What the records note of their triggers, the same for both kinds. All else that they do is tested
// by the contract suite: vemora/testing/contract/record_cases.h.

std::vector<std::uint64_t> trigger_ids(const eta_camera& record) {
  std::vector<std::uint64_t> ids;
  for (const auto& held : record.triggers) {
    ids.push_back(held->id);
  }
  return ids;
}

std::vector<std::uint64_t> trigger_ids(const metadata_event_subscription& record) {
  return record.trigger_ids();
}

template <class Record>
struct Triggers_Of_A_Record : ::testing::Test {
  bool add(std::uint64_t id) { return record.add_trigger(a_trigger_record(id)); }
  bool remove(std::uint64_t id) { return record.remove_trigger(a_trigger_record(id)); }

  /// As if it had just been loaded with these triggers.
  void given_loaded_with(const std::vector<std::uint64_t>& ids) {
    for (const std::uint64_t id : ids) {
      add(id);
    }
    record.link_changes = {};
  }

  Record record;
};

using Record_Kinds = ::testing::Types<eta_camera, metadata_event_subscription>;
TYPED_TEST_SUITE(Triggers_Of_A_Record, Record_Kinds, );

TYPED_TEST(Triggers_Of_A_Record, note_what_was_added_and_removed_since_they_were_loaded) {
  this->given_loaded_with({1, 2, 3});

  this->add(5);
  this->add(4);
  this->remove(2);
  this->remove(3);

  EXPECT_THAT(this->record.link_changes.added, ElementsAre(5, 4));
  EXPECT_THAT(this->record.link_changes.removed, ElementsAre(2, 3));
}

TYPED_TEST(Triggers_Of_A_Record, note_nothing_where_nothing_changed) {
  this->given_loaded_with({1, 2});

  this->add(1);
  this->remove(9);

  EXPECT_THAT(this->record.link_changes.added, IsEmpty());
  EXPECT_THAT(this->record.link_changes.removed, IsEmpty());
}

TYPED_TEST(Triggers_Of_A_Record, forget_a_change_that_was_undone) {
  this->given_loaded_with({1});

  this->remove(1);
  this->add(1);
  this->add(2);
  this->remove(2);

  EXPECT_THAT(trigger_ids(this->record), ElementsAre(1));
  EXPECT_THAT(this->record.link_changes.added, IsEmpty());
  EXPECT_THAT(this->record.link_changes.removed, IsEmpty());
}

TYPED_TEST(Triggers_Of_A_Record, note_the_last_of_several_changes) {
  this->given_loaded_with({1});

  for (int times = 0; times < 3; ++times) {
    this->remove(1);
    this->add(1);
    this->add(2);
    this->remove(2);
  }
  this->remove(1);
  this->add(2);

  EXPECT_THAT(this->record.link_changes.added, ElementsAre(2));
  EXPECT_THAT(this->record.link_changes.removed, ElementsAre(1));
}

// Capability documents

Capability_Document::Tree a_tree(const std::string& value) {
  Capability_Document::Tree tree;
  tree.put("Mode", value);
  return tree;
}

TEST(Capability_Documents, are_empty_where_a_camera_says_nothing) {
  EXPECT_TRUE(Capability_Document().tree().empty());
  EXPECT_TRUE(
      Capability_Document(Capability_Document::Loader([] { return nullptr; })).tree().empty());
}

TEST(Capability_Documents, are_fetched_once_when_they_are_first_looked_at) {
  int fetched = 0;
  const Capability_Document document(Capability_Document::Loader([&fetched] {
    ++fetched;
    return std::make_shared<Capability_Document::Tree>(a_tree("On"));
  }));
  EXPECT_EQ(fetched, 0);

  EXPECT_EQ(document.tree().get<std::string>("Mode"), "On");
  EXPECT_EQ(document.tree().get<std::string>("Mode"), "On");
  EXPECT_EQ(fetched, 1);
}

TEST(Capability_Documents, are_fetched_again_after_a_failure) {
  bool fails = true;
  const Capability_Document document(
      Capability_Document::Loader([&fails]() -> std::shared_ptr<const Capability_Document::Tree> {
        if (fails) {
          throw std::runtime_error("connection lost");
        }
        return std::make_shared<Capability_Document::Tree>(a_tree("On"));
      }));

  EXPECT_THROW(document.tree(), std::runtime_error);
  fails = false;
  EXPECT_EQ(document.tree().get<std::string>("Mode"), "On");
}

}  // namespace
}  // namespace kuv::test
