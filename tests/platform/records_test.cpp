#include <gmock/gmock.h>

#include <boost/property_tree/ptree.hpp>
#include <stdexcept>
#include <type_traits>

#include "trigger_parser/member_order.h"
#include "vemora/platform/records/capability_document.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr std::uint64_t half_way = 9223372036854775808U;
constexpr std::uint64_t last = 18446744073709551615U;

std::shared_ptr<trigger> a_trigger_record(std::uint64_t id) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  return record;
}

std::shared_ptr<camera> a_camera(std::uint64_t id) {
  auto record = std::make_shared<camera>();
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

TEST(Records, tell_the_id_of_the_camera_that_they_are_linked_to) {
  eta_camera detection;
  metadata_event_subscription subscription;
  for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{10}, half_way, last}) {
    detection.camera = a_camera(id);
    subscription.camera = a_camera(id);
    EXPECT_TRUE(detection.camera);
    EXPECT_TRUE(subscription.camera);
    EXPECT_EQ(detection.camera_id(), id);
    EXPECT_EQ(subscription.camera_id(), id);
  }
}

// Order by identity

template <class Record>
void expect_order_by_identity(std::shared_ptr<Record> (*make)(std::uint64_t)) {
  const ODB_Utils::Record_Comparator before;
  const std::shared_ptr<Record> none;

  EXPECT_TRUE(before(make(1), make(2)));
  EXPECT_FALSE(before(make(2), make(1)));
  EXPECT_FALSE(before(make(1), make(1)));
  EXPECT_TRUE(before(make(half_way - 1), make(half_way)));
  EXPECT_TRUE(before(make(1), make(last)));
  EXPECT_FALSE(before(make(last), make(1)));
  EXPECT_TRUE(before(none, make(0)));
  EXPECT_FALSE(before(make(0), none));
  EXPECT_FALSE(before(none, none));

  const std::set<std::shared_ptr<Record>, ODB_Utils::Record_Comparator> set{
      make(last), make(1), make(half_way), make(1), none, make(0), none};
  std::vector<std::uint64_t> ids;
  for (auto record = std::next(set.begin()); record != set.end(); ++record) {
    ids.push_back((*record)->id);
  }
  EXPECT_EQ(*set.begin(), none);
  EXPECT_THAT(ids, ElementsAre(0, 1, half_way, last));
}

TEST(Record_Comparator, orders_triggers_by_their_ids) {
  expect_order_by_identity<trigger>(&a_trigger_record);
}

TEST(Record_Comparator, orders_cameras_by_their_ids) {
  expect_order_by_identity<camera>(&a_camera);
}

/// Two loaded copies of one record, one of them from before it was renamed.
template <class Record>
void expect_copies_to_be_one(std::shared_ptr<Record> (*make)(std::uint64_t)) {
  const ODB_Utils::Record_Comparator before;
  for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{1}, half_way, last}) {
    const std::shared_ptr<Record> old_copy = make(id);
    const std::shared_ptr<Record> new_copy = make(id);
    old_copy->name = "a";
    new_copy->name = "b";

    EXPECT_FALSE(before(old_copy, new_copy));
    EXPECT_FALSE(before(new_copy, old_copy));
    std::set<std::shared_ptr<Record>, ODB_Utils::Record_Comparator> set{old_copy, new_copy};
    EXPECT_THAT(set, ElementsAre(old_copy));
    EXPECT_EQ(set.erase(new_copy), 1);
  }
}

TEST(Record_Comparator, takes_copies_of_a_record_with_different_names_for_one) {
  expect_copies_to_be_one<trigger>(&a_trigger_record);
  expect_copies_to_be_one<camera>(&a_camera);
}

TEST(Record_Comparator, heeds_nothing_but_the_id) {
  const auto one = a_trigger_record(1);
  one->name = "b";
  const auto two = a_trigger_record(2);
  two->name = "a";

  EXPECT_TRUE(ODB_Utils::Record_Comparator()(one, two));
}

// Triggers of a record, the same for both kinds

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

TYPED_TEST(Triggers_Of_A_Record, are_listed_in_ascending_order_as_unsigned_numbers) {
  for (const std::uint64_t id :
       {half_way, std::uint64_t{7}, last, std::uint64_t{0}, half_way - 1}) {
    EXPECT_TRUE(this->add(id));
  }
  EXPECT_THAT(trigger_ids(this->record), ElementsAre(0, 7, half_way - 1, half_way, last));
}

TYPED_TEST(Triggers_Of_A_Record, are_added_once) {
  EXPECT_TRUE(this->add(7));
  EXPECT_FALSE(this->add(7));
  EXPECT_THAT(trigger_ids(this->record), ElementsAre(7));
}

TYPED_TEST(Triggers_Of_A_Record, are_the_same_under_another_name) {
  for (const std::uint64_t id : {std::uint64_t{7}, half_way, last}) {
    EXPECT_TRUE(this->add(id));
    const auto renamed = a_trigger_record(id);
    renamed->name = "renamed";

    EXPECT_FALSE(this->record.add_trigger(renamed));
    EXPECT_THAT(trigger_ids(this->record), ElementsAre(id));
    EXPECT_TRUE(this->record.remove_trigger(renamed));
    EXPECT_THAT(trigger_ids(this->record), IsEmpty());
  }
}

TYPED_TEST(Triggers_Of_A_Record, are_taken_out_by_identity) {
  this->given_loaded_with({1, 2, 3});

  EXPECT_TRUE(this->remove(2));
  EXPECT_FALSE(this->remove(2));
  EXPECT_FALSE(this->remove(9));
  EXPECT_THAT(trigger_ids(this->record), ElementsAre(1, 3));
}

TYPED_TEST(Triggers_Of_A_Record, cannot_be_taken_out_of_an_empty_record) {
  EXPECT_FALSE(this->remove(1));
  EXPECT_THAT(trigger_ids(this->record), IsEmpty());
}

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

TEST(Trigger_Links, hold_the_trigger_that_was_added) {
  const auto added = a_trigger_record(7);
  metadata_event_subscription subscription;
  eta_camera detection;

  subscription.add_trigger(added);
  detection.add_trigger(added);

  ASSERT_THAT(subscription.trigger_links, SizeIs(1));
  EXPECT_EQ(subscription.trigger_links[0].get(), added.get());
  EXPECT_THAT(detection.triggers, ElementsAre(added));
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
