// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/strict_equality.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using std::chrono::microseconds;

Trigger_Source a_full_source() {
  return {
      Trigger_Source_Type::object_detection, "topic", Object_Search_Item{"person", false},
      Activity_Duration{Activity_Duration_Mode::object_track, microseconds(1), microseconds(2)}};
}

struct Change {
  std::string of;
  void (*make)(Trigger_Source&);
};

const std::vector<Change> changes{
    {"type", [](Trigger_Source& source) { source.type = Trigger_Source_Type::motion_detection; }},
    {"topic", [](Trigger_Source& source) { source.onvif_topic = "Topic"; }},
    {"presence of the topic", [](Trigger_Source& source) { source.onvif_topic.reset(); }},
    {"object type", [](Trigger_Source& source) { source.search_item->object_type = "car"; }},
    {"motion flag", [](Trigger_Source& source) { source.search_item->motion_required = true; }},
    {"presence of the search item", [](Trigger_Source& source) { source.search_item.reset(); }},
    {"mode",
     [](Trigger_Source& source) {
       source.activity_duration->mode = Activity_Duration_Mode::object_presence;
     }},
    {"least duration",
     [](Trigger_Source& source) { source.activity_duration->min_duration = microseconds(3); }},
    {"dropout",
     [](Trigger_Source& source) { source.activity_duration->dropout = microseconds(3); }},
    {"presence of the duration", [](Trigger_Source& source) { source.activity_duration.reset(); }}};

Trigger_Mapping_Entry named_entry(std::uint64_t id, const std::string& name = "") {
  return {std::make_shared<schedule>(schedule{id, name, true})};
}

using Sources = std::set<Trigger_Source>;
using Schedules = std::set<Trigger_Mapping_Entry>;

TEST(Strict_Equality, sees_every_field_of_a_source) {
  const Sources unchanged{a_full_source()};
  EXPECT_TRUE(strict_equality::same(unchanged, Sources{a_full_source()}));
  for (const Change& change : changes) {
    Trigger_Source changed = a_full_source();
    change.make(changed);
    EXPECT_FALSE(strict_equality::same(unchanged, Sources{changed})) << change.of;
    EXPECT_FALSE(strict_equality::same(Sources{changed}, unchanged)) << change.of;
    EXPECT_TRUE(strict_equality::same(Sources{changed}, Sources{changed})) << change.of;
  }
}

TEST(Strict_Equality, sees_a_source_more_and_a_source_less) {
  Trigger_Source motion;
  motion.type = Trigger_Source_Type::motion_detection;
  const Sources one{a_full_source()};
  const Sources two{a_full_source(), motion};
  EXPECT_FALSE(strict_equality::same(one, two));
  EXPECT_FALSE(strict_equality::same(two, one));
  EXPECT_FALSE(strict_equality::same(Sources(), one));
  EXPECT_TRUE(strict_equality::same(Sources(), Sources()));
}

TEST(Strict_Equality, tells_schedules_apart_by_their_ids_alone) {
  EXPECT_TRUE(
      strict_equality::same(Schedules{named_entry(1, "a")}, Schedules{named_entry(1, "b")}));
  EXPECT_FALSE(strict_equality::same(Schedules{named_entry(1)}, Schedules{named_entry(2)}));
  EXPECT_FALSE(
      strict_equality::same(Schedules{named_entry(1)}, Schedules{named_entry(1), named_entry(2)}));
  EXPECT_FALSE(strict_equality::same(Schedules{named_entry(1)}, Schedules()));
}

}  // namespace
}  // namespace kuv::test
