// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/records/record_comparator.h"
#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

/// The functions of the records, which come with the repositories in the server's persistence
/// library. The notes in `link_changes` are that library's own.
class Records_Contract : public Repository_Contract_Test {
 protected:
  template <class Record>
  using Ordered = std::set<std::shared_ptr<Record>, ODB_Utils::Record_Comparator>;

  template <class Record>
  static std::shared_ptr<Record> record_of_id(std::uint64_t id) {
    auto record = std::make_shared<Record>();
    record->id = id;
    return record;
  }

  static Ids trigger_ids(const metadata_event_subscription& record) { return record.trigger_ids(); }
  static Ids trigger_ids(const eta_camera& record) {
    Ids ids;
    for (const std::shared_ptr<trigger>& held : record.triggers) {
      ids.push_back(held->id);
    }
    return ids;
  }

  /// Checks a new record of either kind.
  template <class Check>
  static void of_both_kinds(Check check) {
    {
      SCOPED_TRACE("subscription");
      metadata_event_subscription record;
      check(record);
    }
    SCOPED_TRACE("detection");
    eta_camera record;
    check(record);
  }

  template <class Record>
  static void expect_order_by_identity() {
    const ODB_Utils::Record_Comparator before;
    const auto make = &record_of_id<Record>;
    const std::shared_ptr<Record> none;

    EXPECT_TRUE(before(make(1), make(2)));
    EXPECT_FALSE(before(make(2), make(1)));
    EXPECT_FALSE(before(make(1), make(1)));
    EXPECT_TRUE(before(make(largest_signed_id), make(first_unsigned_id)));
    EXPECT_TRUE(before(make(1), make(largest_id)));
    EXPECT_FALSE(before(make(largest_id), make(1)));
    EXPECT_TRUE(before(none, make(0)));
    EXPECT_FALSE(before(make(0), none));
    EXPECT_FALSE(before(none, none));

    const Ordered<Record> set{make(largest_id), make(1), make(first_unsigned_id), make(1), none,
                              make(0),          none};
    ASSERT_EQ(set.size(), 5U);
    EXPECT_EQ(*set.begin(), none);
    Ids ids;
    for (auto record = std::next(set.begin()); record != set.end(); ++record) {
      ids.push_back((*record)->id);
    }
    EXPECT_THAT(ids, testing::ElementsAre(0, 1, first_unsigned_id, largest_id));
  }

  /// Two loaded copies of one record, one of them from before it was renamed.
  template <class Record>
  static void expect_copies_to_be_one() {
    const ODB_Utils::Record_Comparator before;
    for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{1}, largest_id}) {
      const auto old_copy = record_of_id<Record>(id);
      const auto new_copy = record_of_id<Record>(id);
      old_copy->name = "a";
      new_copy->name = "b";

      EXPECT_FALSE(before(old_copy, new_copy));
      EXPECT_FALSE(before(new_copy, old_copy));
      Ordered<Record> set{old_copy, new_copy};
      EXPECT_THAT(set, testing::ElementsAre(old_copy));
      EXPECT_EQ(set.erase(new_copy), 1U);
    }
  }
};

TEST_P(Records_Contract, order_triggers_and_cameras_by_their_ids) {
  expect_order_by_identity<trigger>();
  expect_order_by_identity<camera>();
}

TEST_P(Records_Contract, take_copies_of_a_record_with_different_names_for_one) {
  expect_copies_to_be_one<trigger>();
  expect_copies_to_be_one<camera>();
}

TEST_P(Records_Contract, heed_nothing_but_the_id) {
  const auto one = record_of_id<trigger>(1);
  one->name = "b";
  const auto two = record_of_id<trigger>(2);
  two->name = "a";

  EXPECT_TRUE(ODB_Utils::Record_Comparator()(one, two));
}

TEST_P(Records_Contract, have_no_triggers_when_they_are_new) {
  of_both_kinds([](auto& record) { EXPECT_EQ(trigger_ids(record), Ids()); });
}

TEST_P(Records_Contract, tell_the_id_of_the_camera_that_they_are_linked_to) {
  of_both_kinds([](auto& record) {
    for (const std::uint64_t id :
         {std::uint64_t{0}, std::uint64_t{10}, first_unsigned_id, largest_id}) {
      record.camera = camera_of_id(id);
      EXPECT_EQ(record.camera_id(), id);
    }
  });
}

TEST_P(Records_Contract, list_their_triggers_in_ascending_order_as_unsigned_numbers) {
  of_both_kinds([](auto& record) {
    for (const std::uint64_t id :
         {first_unsigned_id, std::uint64_t{7}, largest_id, std::uint64_t{0}, largest_signed_id}) {
      EXPECT_TRUE(record.add_trigger(record_of_id<trigger>(id)));
    }
    EXPECT_THAT(trigger_ids(record),
                testing::ElementsAre(0, 7, largest_signed_id, first_unsigned_id, largest_id));
  });
}

TEST_P(Records_Contract, take_a_trigger_once_whatever_it_is_called) {
  of_both_kinds([](auto& record) {
    for (const std::uint64_t id : {std::uint64_t{7}, first_unsigned_id, largest_id}) {
      EXPECT_TRUE(record.add_trigger(record_of_id<trigger>(id)));
      EXPECT_FALSE(record.add_trigger(record_of_id<trigger>(id)));
      const auto renamed = record_of_id<trigger>(id);
      renamed->name = "renamed";
      EXPECT_FALSE(record.add_trigger(renamed));
      EXPECT_THAT(trigger_ids(record), testing::ElementsAre(id));
      EXPECT_TRUE(record.remove_trigger(renamed));
      EXPECT_EQ(trigger_ids(record), Ids());
    }
  });
}

TEST_P(Records_Contract, let_triggers_go_by_identity) {
  of_both_kinds([](auto& record) {
    EXPECT_FALSE(record.remove_trigger(record_of_id<trigger>(1)));
    for (const std::uint64_t id : {1, 2, 3}) {
      record.add_trigger(record_of_id<trigger>(id));
    }

    EXPECT_TRUE(record.remove_trigger(record_of_id<trigger>(2)));
    EXPECT_FALSE(record.remove_trigger(record_of_id<trigger>(2)));
    EXPECT_FALSE(record.remove_trigger(record_of_id<trigger>(9)));
    EXPECT_THAT(trigger_ids(record), testing::ElementsAre(1, 3));
  });
}

TEST_P(Records_Contract, hold_the_trigger_that_was_added) {
  const auto added = record_of_id<trigger>(7);
  metadata_event_subscription subscription;
  eta_camera detection;

  subscription.add_trigger(added);
  detection.add_trigger(added);

  ASSERT_EQ(subscription.trigger_links.size(), 1U);
  EXPECT_EQ(subscription.trigger_links[0].get(), added.get());
  EXPECT_THAT(detection.triggers, testing::ElementsAre(added));
}

}  // namespace kuv::test
