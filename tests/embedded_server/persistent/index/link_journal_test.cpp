// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/link_journal.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace kuv::vemora::embedded_server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> texts(const std::vector<Changes::Link>& links) {
  std::vector<std::string> texts;
  for (const Changes::Link& link : links) {
    texts.push_back(fmt::format("{}-{}", link.record_id, link.trigger_id));
  }
  return texts;
}

TEST(Journal_Of_Links, says_nothing_of_a_link_that_went_and_came_back) {
  Link_Journal journal;
  journal.note_removed(1, 7);
  journal.note_added(1, 7);
  journal.note_added(2, 7);
  journal.note_removed(2, 7);

  const auto net = journal.settle();

  EXPECT_TRUE(net.links.empty());
  EXPECT_THAT(net.updated_records, IsEmpty());
}

TEST(Journal_Of_Links, says_in_order_what_is_left_of_many_changes) {
  Link_Journal journal;
  journal.note_added(2, 9);
  journal.note_removed(2, 8);
  journal.note_added(1, 8);
  journal.note_added(2, 7);
  journal.note_removed(1, 8);
  journal.note_added(1, 8);
  journal.note_removed(1, 9);

  const auto net = journal.settle();

  EXPECT_THAT(texts(net.links.added), ElementsAre("1-8", "2-7", "2-9"));
  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-9", "2-8"));
  EXPECT_THAT(net.updated_records, ElementsAre(1, 2));
}

TEST(Journal_Of_Links, does_not_call_a_record_updated_that_only_lost_deleted_triggers) {
  Link_Journal journal;
  journal.note_dropped(1, 7);
  journal.note_dropped(2, 7);
  journal.note_added(2, 8);

  const auto net = journal.settle();

  EXPECT_THAT(texts(net.links.deleted), ElementsAre("1-7", "2-7"));
  EXPECT_THAT(net.updated_records, ElementsAre(2));
}

TEST(Journal_Of_Links, lets_the_last_of_several_removals_say_why_a_link_went) {
  Link_Journal dropped_at_last;
  dropped_at_last.note_removed(1, 7);
  dropped_at_last.note_added(1, 7);
  dropped_at_last.note_dropped(1, 7);
  const auto dropped = dropped_at_last.settle();
  EXPECT_THAT(texts(dropped.links.deleted), ElementsAre("1-7"));
  EXPECT_THAT(dropped.updated_records, IsEmpty());

  Link_Journal removed_at_last;
  removed_at_last.note_dropped(1, 7);
  removed_at_last.note_added(1, 7);
  removed_at_last.note_removed(1, 7);
  const auto removed = removed_at_last.settle();
  EXPECT_THAT(texts(removed.links.deleted), ElementsAre("1-7"));
  EXPECT_THAT(removed.updated_records, ElementsAre(1));
}

TEST(Journal_Of_Links, is_empty_once_it_was_settled) {
  Link_Journal journal;
  journal.note_added(1, 7);
  EXPECT_FALSE(journal.empty());
  journal.settle();

  EXPECT_TRUE(journal.empty());
  EXPECT_TRUE(journal.settle().links.empty());
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
