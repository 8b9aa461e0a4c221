// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/linked_records.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>

#include "records-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Ids = std::vector<std::uint64_t>;

constexpr std::uint64_t largest_id = std::numeric_limits<std::uint64_t>::max();

std::shared_ptr<trigger> a_trigger(std::uint64_t id) {
  auto record = std::make_shared<trigger>();
  record->id = id;
  return record;
}

template <class Record>
Ids ids_of(const std::vector<std::shared_ptr<Record>>& records) {
  Ids ids;
  for (const std::shared_ptr<Record>& record : records) {
    ids.push_back(record->id);
  }
  return ids;
}

std::vector<std::string> texts(const std::vector<Changes::Link>& links) {
  std::vector<std::string> texts;
  for (const Changes::Link& link : links) {
    texts.push_back(fmt::format("{}-{}", link.record_id, link.trigger_id));
  }
  return texts;
}

/// Records of one kind over triggers that are stored, without any database.
template <class Record>
class Records_That_Hold_Triggers : public testing::Test {
 protected:
  using Records = Linked_Records<Record>;
  using Pointer = std::shared_ptr<Record>;

  std::shared_ptr<trigger> find_trigger(std::uint64_t id) const {
    const auto found = triggers_.find(id);
    return found == triggers_.end() ? nullptr : found->second;
  }

  void given_triggers(const Ids& ids) {
    for (const std::uint64_t id : ids) {
      triggers_.emplace(id, a_trigger(id));
    }
  }

  /// A record that the database holds already; to be followed by given_links.
  Pointer given_stored(std::uint64_t id) {
    auto record = std::make_shared<Record>();
    record->id = id;
    return records.load(record).record;
  }

  /// In pairs of record and trigger, as they come from the database.
  void given_links(const std::vector<std::pair<std::uint64_t, std::uint64_t>>& links) {
    std::vector<std::shared_ptr<trigger>> stored;
    for (const auto& entry : triggers_) {
      stored.push_back(entry.second);
    }
    typename Records::Link_Loader loader(records, stored);
    for (const auto& [record_id, trigger_id] : links) {
      loader.take(record_id, trigger_id);
    }
    loader.finish();
  }

  Pointer added(const Ids& trigger_ids) {
    auto record = std::make_shared<Record>();
    for (const std::uint64_t id : trigger_ids) {
      record->add_trigger(find_trigger(id));
    }
    records.add(record);
    return record;
  }

  bool update(const Pointer& changed) {
    return records.update(changed, [this](std::uint64_t id) { return find_trigger(id); });
  }

  void join(const Pointer& record, std::uint64_t trigger_id) {
    record->add_trigger(find_trigger(trigger_id));
    EXPECT_TRUE(update(record));
  }
  void leave(const Pointer& record, std::uint64_t trigger_id) {
    record->remove_trigger(a_trigger(trigger_id));
    EXPECT_TRUE(update(record));
  }

  void delete_triggers(const std::set<std::uint64_t>& dead) {
    records.drop_triggers(dead);
    for (const std::uint64_t id : dead) {
      triggers_.erase(id);
    }
  }

  Ids delete_without_triggers() {
    Ids forgotten;
    records.delete_without_triggers([](const Record&) { return true; },
                                    [&](const Record& record) { forgotten.push_back(record.id); });
    return forgotten;
  }

  Ids holding(std::uint64_t trigger_id) const {
    Ids ids;
    for (const auto* const entry : records.holders(trigger_id).entries()) {
      ids.push_back(entry->record->id);
    }
    return ids;
  }

  Records records{Id_Allocator("records", 1)};

 private:
  std::map<std::uint64_t, std::shared_ptr<trigger>> triggers_;
};

using Kinds = testing::Types<metadata_event_subscription, eta_camera>;
TYPED_TEST_SUITE(Records_That_Hold_Triggers, Kinds, );

TYPED_TEST(Records_That_Hold_Triggers, are_found_by_trigger_as_they_were_read) {
  this->given_triggers({7, 8, largest_id});
  const auto first = this->given_stored(1);
  const auto second = this->given_stored(2);
  const auto last = this->given_stored(largest_id);

  // As the database orders ids: as signed numbers.
  this->given_links({{largest_id, largest_id}, {largest_id, 7}, {1, 7}, {1, 8}, {2, 8}});

  EXPECT_THAT(this->holding(7), ElementsAre(1, largest_id));
  EXPECT_THAT(this->holding(8), ElementsAre(1, 2));
  EXPECT_THAT(held_ids(*first), ElementsAre(7, 8));
  EXPECT_THAT(held_ids(*last), ElementsAre(7, largest_id));
  EXPECT_TRUE(this->records.settle().links.empty());
}

TYPED_TEST(Records_That_Hold_Triggers, lose_links_to_triggers_that_are_not_stored) {
  this->given_triggers({7});
  const auto record = this->given_stored(1);

  this->given_links({{1, 7}, {1, 9}, {5, 7}});

  EXPECT_THAT(held_ids(*record), ElementsAre(7));
  const auto net = this->records.settle();
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-9", "5-7"));
  EXPECT_THAT(net.updated, IsEmpty());
}

TYPED_TEST(Records_That_Hold_Triggers, are_added_with_an_id_and_all_their_links) {
  this->given_triggers({7, 8});
  this->given_stored(1);

  const auto record = this->added({7, 8});

  EXPECT_EQ(record->id, 2U);
  EXPECT_THAT(ids_of(this->records.all()), ElementsAre(1, 2));
  EXPECT_THAT(this->holding(8), ElementsAre(2));
  EXPECT_THAT(record->link_changes.added, IsEmpty());
  const auto net = this->records.settle();
  EXPECT_THAT(net.added, ElementsAre(record));
  EXPECT_THAT(texts(net.links.added), ElementsAre("2-7", "2-8"));
  EXPECT_THAT(net.deleted, IsEmpty());
}

TYPED_TEST(Records_That_Hold_Triggers, are_held_as_they_were_handed_over_last) {
  this->given_triggers({7, 8});
  const auto record = this->given_stored(1);
  this->given_links({{1, 7}});

  record->remove_trigger(a_trigger(7));
  record->add_trigger(this->find_trigger(8));
  EXPECT_THAT(this->holding(7), ElementsAre(1));
  EXPECT_THAT(this->holding(8), IsEmpty());
  EXPECT_THAT(this->delete_without_triggers(), IsEmpty());

  EXPECT_TRUE(this->update(record));
  EXPECT_THAT(this->holding(7), IsEmpty());
  EXPECT_THAT(this->holding(8), ElementsAre(1));
  const auto net = this->records.settle();
  EXPECT_THAT(texts(net.links.added), ElementsAre("1-8"));
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-7"));
  EXPECT_THAT(net.updated, ElementsAre(record));
}

TYPED_TEST(Records_That_Hold_Triggers, are_unchanged_when_a_trigger_left_and_came_back) {
  this->given_triggers({7});
  const auto record = this->given_stored(1);
  this->given_links({{1, 7}});

  this->leave(record, 7);
  EXPECT_THAT(this->holding(7), IsEmpty());
  this->join(record, 7);

  EXPECT_THAT(this->holding(7), ElementsAre(1));
  const auto net = this->records.settle();
  EXPECT_TRUE(net.links.empty());
  EXPECT_THAT(net.updated, IsEmpty());
}

TYPED_TEST(Records_That_Hold_Triggers, are_not_updated_when_they_or_a_trigger_are_not_stored) {
  this->given_triggers({7, 8});
  const auto record = this->given_stored(1);
  this->given_links({{1, 7}});
  auto unknown = std::make_shared<TypeParam>();
  unknown->id = 5;
  EXPECT_FALSE(this->update(unknown));

  record->remove_trigger(a_trigger(7));
  record->add_trigger(this->find_trigger(8));
  record->add_trigger(a_trigger(9));
  EXPECT_FALSE(this->update(record));

  const auto fresh = this->records.find(1)->record;
  EXPECT_NE(fresh, record);
  EXPECT_THAT(held_ids(*fresh), ElementsAre(7));
  EXPECT_THAT(fresh->link_changes.added, IsEmpty());
  EXPECT_THAT(fresh->link_changes.removed, IsEmpty());
  EXPECT_THAT(this->holding(7), ElementsAre(1));
  EXPECT_THAT(this->holding(8), IsEmpty());
  EXPECT_TRUE(this->records.settle().links.empty());
}

TYPED_TEST(Records_That_Hold_Triggers, take_over_what_a_copy_says) {
  this->given_triggers({7, 8, 9});
  const auto record = this->given_stored(1);
  this->given_links({{1, 7}, {1, 8}});
  const auto copy = std::make_shared<TypeParam>(*record);
  record->add_trigger(this->find_trigger(9));     // the copy says so too
  record->remove_trigger(this->find_trigger(8));  // of this the copy says nothing

  copy->add_trigger(this->find_trigger(9));
  copy->remove_trigger(this->find_trigger(7));
  EXPECT_TRUE(this->update(copy));

  EXPECT_THAT(held_ids(*record), ElementsAre(9));
  EXPECT_THAT(record->link_changes.added, IsEmpty());
  EXPECT_THAT(record->link_changes.removed, ElementsAre(8));
  EXPECT_THAT(this->holding(8), ElementsAre(1));
  EXPECT_TRUE(this->update(record));
  const auto net = this->records.settle();
  EXPECT_THAT(texts(net.links.added), ElementsAre("1-9"));
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-7", "1-8"));
}

TYPED_TEST(Records_That_Hold_Triggers, lose_triggers_that_are_deleted) {
  this->given_triggers({7, 8});
  const auto first = this->given_stored(1);
  const auto second = this->given_stored(2);
  this->given_links({{1, 7}, {1, 8}, {2, 8}});
  first->remove_trigger(a_trigger(7));  // and not handed over

  this->delete_triggers({7});

  EXPECT_THAT(this->holding(7), IsEmpty());
  EXPECT_THAT(held_ids(*first), ElementsAre(8));
  EXPECT_THAT(first->link_changes.removed, IsEmpty());
  const auto net = this->records.settle();
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-7"));
  EXPECT_THAT(net.updated, IsEmpty());
}

TYPED_TEST(Records_That_Hold_Triggers, are_deleted_when_nobody_holds_them) {
  this->given_triggers({7, 8, 9});
  const auto left = this->given_stored(1);
  this->given_stored(2);
  this->given_stored(3);
  const auto joined = this->given_stored(4);
  this->given_links({{1, 7}, {2, 8}, {3, 7}, {3, 8}});
  this->leave(left, 7);
  joined->add_trigger(this->find_trigger(9));  // and not handed over
  const auto short_lived = this->added({7});
  this->leave(short_lived, 7);
  this->delete_triggers({8});

  EXPECT_THAT(this->delete_without_triggers(), ElementsAre(1, 2, 4, 5));

  EXPECT_THAT(ids_of(this->records.all()), ElementsAre(3));
  EXPECT_THAT(this->holding(7), ElementsAre(3));
  EXPECT_EQ(this->records.find(1), nullptr);
  const auto net = this->records.settle();
  EXPECT_THAT(ids_of(net.deleted), ElementsAre(1, 2, 4));  // the fifth was never stored
  EXPECT_THAT(net.added, IsEmpty());
  EXPECT_THAT(net.updated, IsEmpty());
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-7", "2-8", "3-8"));
  EXPECT_THAT(net.links.added, IsEmpty());
}

TYPED_TEST(Records_That_Hold_Triggers, take_no_id_of_a_record_that_is_still_stored) {
  this->given_triggers({7});
  this->given_stored(1);
  this->given_links({});
  this->delete_without_triggers();

  EXPECT_EQ(this->added({7})->id, 2U);

  this->records.settle();
  EXPECT_EQ(this->added({})->id, 3U);
}

TYPED_TEST(Records_That_Hold_Triggers, are_kept_where_they_may_not_be_deleted) {
  this->given_stored(1);
  this->given_stored(2);

  this->records.delete_without_triggers([](const TypeParam& record) { return record.id == 2; },
                                        [](const TypeParam&) {});

  EXPECT_THAT(ids_of(this->records.all()), ElementsAre(1));
}

TYPED_TEST(Records_That_Hold_Triggers, hold_the_fresh_record_of_a_trigger) {
  this->given_triggers({7, 8});
  const auto record = this->given_stored(1);
  this->given_stored(2);
  this->given_links({{1, 7}, {1, 8}});
  const auto fresh = a_trigger(7);
  fresh->name = "fresh";

  this->records.replace_trigger(fresh);

  EXPECT_THAT(held_ids(*record), ElementsAre(7, 8));
  EXPECT_EQ(fresh.use_count(), 2);  // it is the one that is held
}

TYPED_TEST(Records_That_Hold_Triggers, are_settled_once) {
  this->given_triggers({7});
  this->given_stored(1);
  this->added({7});
  this->delete_without_triggers();
  this->records.settle();

  const auto net = this->records.settle();

  EXPECT_THAT(net.added, IsEmpty());
  EXPECT_THAT(net.deleted, IsEmpty());
  EXPECT_TRUE(net.links.empty());
}

using Subscriptions_That_Hold_Triggers = Records_That_Hold_Triggers<metadata_event_subscription>;

TEST_F(Subscriptions_That_Hold_Triggers, are_stale_before_the_deletion_if_they_are_deleted_after) {
  const auto may_go = [](const metadata_event_subscription& record) { return record.id != 6; };
  given_triggers({7, 8, 9});
  for (const std::uint64_t id : {1, 2, 3, 4, 5, 6}) {
    given_stored(id);
  }
  given_links({{1, 7}, {2, 7}, {2, 8}, {3, 8}, {4, 8}, {5, 8}});
  // Handed over: 4 holds 9 now. Not handed over: 3 is to hold 9, and 5 nothing.
  leave(records.find(4)->record, 8);
  join(records.find(4)->record, 9);
  records.find(3)->record->add_trigger(find_trigger(9));
  records.find(5)->record->remove_trigger(a_trigger(8));

  const Ids stale = ids_of(records.holding_none_of({8}, may_go));
  EXPECT_THAT(stale, ElementsAre(1, 4));

  delete_triggers({7, 9});
  EXPECT_EQ(ids_of(records.holding_none_of({8}, may_go)), stale);
  Ids deleted;
  records.delete_without_triggers(
      may_go, [&](const metadata_event_subscription& record) { deleted.push_back(record.id); });
  EXPECT_EQ(deleted, stale);
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
