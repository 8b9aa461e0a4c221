// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/trigger_config.h"

#include <gmock/gmock.h>

#include <chrono>
#include <limits>
#include <type_traits>

#include "support/log_capture.h"
#include "trigger_parser/member_order.h"
#include "vemora/trigger_parser/notification_properties.h"
#include "vemora/trigger_parser/trigger_config_state.h"
#include "vemora/trigger_parser/trigger_mapping.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Trigger_Source onvif(std::optional<std::string> topic) {
  return {Trigger_Source_Type::onvif_metadata, std::move(topic), {}, {}};
}

Trigger_Source object_detection(const std::string& object_type, bool motion_required = false) {
  return {Trigger_Source_Type::object_detection,
          {},
          Object_Search_Item{object_type, motion_required},
          {}};
}

Trigger_Source of_type(std::int32_t type) {
  return {static_cast<Trigger_Source_Type>(type), {}, {}, {}};
}

Trigger_Mapping_Entry entry(std::uint64_t schedule_id) {
  return {std::make_shared<schedule>(schedule{schedule_id, "", true})};
}

template <class Value>
void expect_same_place(const Value& left, const Value& right) {
  EXPECT_FALSE(left < right);
  EXPECT_FALSE(right < left);
}

template <class Value>
void expect_before(const Value& left, const Value& right) {
  EXPECT_TRUE(left < right);
  EXPECT_FALSE(right < left);
}

// The records

TEST(Trigger_Records, are_plain_values) {
  const auto expect_plain = [](auto value) {
    using Value = decltype(value);
    EXPECT_FALSE(std::is_polymorphic_v<Value>);
    EXPECT_TRUE(std::is_copy_constructible_v<Value> && std::is_copy_assignable_v<Value>);
    EXPECT_TRUE(std::is_move_constructible_v<Value> && std::is_move_assignable_v<Value>);
  };
  expect_plain(Trigger_Config());
  expect_plain(Trigger_Config::Tags());
  expect_plain(Trigger_Config::Options());
  expect_plain(Trigger_Source());
  expect_plain(Object_Search_Item());
  expect_plain(Activity_Duration());
  expect_plain(Trigger_Mapping_Entry());
  expect_plain(Notification_Properties());
}

TEST(Trigger_Records, keep_their_fields_in_the_order_that_servers_were_built_with) {
  const Trigger_Config config;
  EXPECT_TRUE(lie_in_order(config.id, config.name, config.tags, config.sources, config.schedules,
                           config.options, config.matches_server, config.schedule_invalid));
  EXPECT_TRUE(lie_in_order(config.tags.server, config.tags.camera, config.tags.event_subscription));
  const Trigger_Source source;
  EXPECT_TRUE(
      lie_in_order(source.type, source.onvif_topic, source.search_item, source.activity_duration));
  const Object_Search_Item item;
  EXPECT_TRUE(lie_in_order(item.object_type, item.motion_required));
  const Activity_Duration activity;
  EXPECT_TRUE(lie_in_order(activity.mode, activity.min_duration, activity.dropout));
  const Notification_Properties properties;
  EXPECT_TRUE(lie_in_order(properties.max_latency, properties.digest_cooldown,
                           properties.ack_timeout, properties.nack_delay));
}

TEST(Trigger_Records, hold_numbers_of_fixed_widths) {
  EXPECT_TRUE((std::is_same_v<decltype(Trigger_Config::id), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Trigger_Source_Type>, std::int32_t>));
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Activity_Duration_Mode>, std::int32_t>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(Activity_Duration::min_duration), std::chrono::microseconds>));
  EXPECT_TRUE((std::is_same_v<decltype(Activity_Duration::dropout), std::chrono::microseconds>));
  EXPECT_TRUE((std::is_same_v<Notification_Properties::Milliseconds::rep, std::uint32_t>));
  EXPECT_TRUE((std::is_same_v<Notification_Properties::Milliseconds::period, std::milli>));
}

TEST(Trigger_Records, map_each_trigger_to_its_schedules_or_to_none_that_can_be_used) {
  EXPECT_TRUE((std::is_same_v<Trigger_Mapping::key_type, std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<Trigger_Mapping::mapped_type,
                              std::optional<std::set<Trigger_Mapping_Entry>>>));
  EXPECT_TRUE((std::is_same_v<Trigger_Mapping::key_compare, std::less<std::uint64_t>>));
}

TEST(Trigger_Records, refer_to_schedules_that_begin_with_their_id) {
  const schedule record;
  EXPECT_TRUE((std::is_same_v<decltype(schedule::id), std::uint64_t>));
  EXPECT_EQ(static_cast<const void*>(&record.id), static_cast<const void*>(&record));
  EXPECT_TRUE((std::is_same_v<decltype(Trigger_Mapping_Entry::schedule),
                              std::shared_ptr<vemora::schedule>>));
}

TEST(Trigger_Records, number_their_kinds_as_they_are_stored) {
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::onvif_metadata), 0);
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::metadata_event), 1);
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::object_detection), 2);
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::external), 3);
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::motion_detection), 4);
  EXPECT_EQ(static_cast<int>(Trigger_Source_Type::audio_detection), 5);
  EXPECT_EQ(static_cast<int>(Activity_Duration_Mode::object_presence), 0);
  EXPECT_EQ(static_cast<int>(Activity_Duration_Mode::object_track), 1);
}

TEST(Trigger_Records, start_empty) {
  const Trigger_Config config;
  EXPECT_EQ(config.id, 0U);
  EXPECT_EQ(config.name, "");
  EXPECT_THAT(config.tags.server, IsEmpty());
  EXPECT_THAT(config.tags.camera, IsEmpty());
  EXPECT_THAT(config.tags.event_subscription, IsEmpty());
  EXPECT_THAT(config.sources, IsEmpty());
  EXPECT_THAT(config.schedules, IsEmpty());
  EXPECT_FALSE(config.options.any_time);
  EXPECT_FALSE(config.matches_server);
  EXPECT_FALSE(config.schedule_invalid);

  const Activity_Duration activity;
  EXPECT_EQ(activity.mode, Activity_Duration_Mode::object_presence);
  EXPECT_EQ(activity.min_duration, std::chrono::microseconds::zero());
  EXPECT_EQ(activity.dropout, std::chrono::microseconds::zero());
}

TEST(Trigger_Records, make_a_trigger_active_on_its_server_within_valid_schedules) {
  const auto active = [](bool matches_server, bool schedule_invalid) {
    Trigger_Config config;
    config.matches_server = matches_server;
    config.schedule_invalid = schedule_invalid;
    return is_active(config);
  };

  EXPECT_TRUE(active(true, false));
  EXPECT_FALSE(active(true, true));
  EXPECT_FALSE(active(false, false));
  EXPECT_FALSE(active(false, true));
}

// Orderings

TEST(Order_Of_Sources, is_first_by_type_as_a_signed_number) {
  const std::int32_t types[] = {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2, 3, 4, 5, 6,
                                std::numeric_limits<std::int32_t>::max()};
  for (std::size_t index = 1; index < std::size(types); ++index) {
    expect_before(of_type(types[index - 1]), of_type(types[index]));
  }
  expect_before(onvif("z"), object_detection("a"));
}

TEST(Order_Of_Sources, is_by_topic_among_onvif_sources) {
  expect_before(onvif("a"), onvif("b"));
  expect_before(onvif("a"), onvif("aa"));
  expect_before(onvif("B"), onvif("a"));
  expect_before(onvif("a"), onvif("a\0"s));
  expect_before(onvif("z"), onvif("\xc3\xa4"));
  expect_before(onvif(""), onvif("a"));
  expect_same_place(onvif("a"), onvif("a"));
}

TEST(Order_Of_Sources, does_not_tell_an_onvif_source_without_a_topic_from_others) {
  expect_same_place(onvif(std::nullopt), onvif("a"));
  expect_same_place(onvif(std::nullopt), onvif(std::nullopt));
}

TEST(Order_Of_Sources, is_by_object_type_among_object_detection_sources) {
  expect_before(object_detection("car"), object_detection("person"));
  expect_before(object_detection("car"), object_detection("cart"));
  expect_before(object_detection("Person"), object_detection("car"));
  expect_before(object_detection("z"), object_detection("\xc3\xa4"));
  expect_same_place(object_detection("car"), object_detection("car"));
}

TEST(Order_Of_Sources, does_not_tell_an_object_detection_source_without_search_item_from_others) {
  expect_same_place(of_type(2), object_detection("car"));
  expect_same_place(of_type(2), of_type(2));
}

TEST(Order_Of_Sources, heeds_neither_motion_nor_duration) {
  Trigger_Source lasting = object_detection("car", true);
  lasting.activity_duration = Activity_Duration{};
  expect_same_place(object_detection("car"), lasting);

  Trigger_Source motion = of_type(4);
  motion.activity_duration = Activity_Duration{};
  expect_same_place(of_type(4), motion);
}

TEST(Order_Of_Sources, knows_one_source_of_each_other_type) {
  for (const std::int32_t type : {1, 3, 4, 5, 6, -1}) {
    SCOPED_TRACE(type);
    Trigger_Source left = of_type(type);
    Trigger_Source right = of_type(type);
    left.onvif_topic = "a";
    right.onvif_topic = "b";
    left.search_item = Object_Search_Item{"a"};
    right.search_item = Object_Search_Item{"b"};
    expect_same_place(left, right);
  }
}

TEST(Order_Of_Sources, is_an_operation_of_the_source_itself) {
  EXPECT_TRUE((std::is_same_v<decltype(&Trigger_Source::operator<),
                              bool (Trigger_Source::*)(const Trigger_Source&) const>));
}

TEST(Order_Of_Sources, makes_sets_of_what_differs) {
  EXPECT_THAT((std::set<Trigger_Source>{onvif("a"), onvif("b")}), SizeIs(2));
  EXPECT_THAT((std::set<Trigger_Source>{onvif("a"), onvif("a")}), SizeIs(1));
  EXPECT_THAT(
      (std::set<Trigger_Source>{object_detection("person", true), object_detection("person")}),
      SizeIs(1));
}

TEST(Order_Of_Search_Items, is_by_object_type_alone) {
  expect_before(Object_Search_Item{"car", true}, Object_Search_Item{"person", false});
  expect_before(Object_Search_Item{"car", false}, Object_Search_Item{"cart", false});
  expect_before(Object_Search_Item{"z", false}, Object_Search_Item{"\xc3\xa4", false});
  expect_same_place(Object_Search_Item{"car", true}, Object_Search_Item{"car", false});
}

TEST(Order_Of_Mapping_Entries, is_by_schedule_id_as_an_unsigned_number) {
  expect_before(entry(1), entry(2));
  expect_before(entry(1), entry(9223372036854775808U));
  expect_before(entry(9223372036854775807U), entry(18446744073709551615U));
  expect_same_place(entry(18446744073709551615U), entry(18446744073709551615U));
}

TEST(Order_Of_Mapping_Entries, takes_two_records_of_one_schedule_for_one) {
  EXPECT_THAT((std::set<Trigger_Mapping_Entry>{entry(1), entry(1), entry(2)}), SizeIs(2));
}

// Topics

TEST(All_Source_Topics, are_those_of_the_onvif_sources_sorted) {
  Trigger_Config config;
  config.sources = {object_detection("car"), onvif("b"), of_type(1), onvif("a"), of_type(4),
                    onvif("\xc3\xa4"),       of_type(5)};

  EXPECT_THAT(config.all_source_topics(), ElementsAre("a", "b", "\xc3\xa4"));
}

TEST(All_Source_Topics, are_none_without_onvif_sources) {
  Trigger_Config config;
  EXPECT_THAT(config.all_source_topics(), IsEmpty());

  config.sources = {object_detection("car"), object_detection("person")};
  EXPECT_THAT(config.all_source_topics(), IsEmpty());
}

TEST(All_Source_Topics, leave_out_the_topic_of_a_source_of_another_type) {
  Trigger_Source generic = of_type(1);
  generic.onvif_topic = "a";
  Trigger_Config config;
  config.sources = {generic};

  EXPECT_THAT(config.all_source_topics(), IsEmpty());
}

TEST(All_Source_Topics, fail_on_an_onvif_source_without_a_topic) {
  Trigger_Config config;
  config.sources = {onvif(std::nullopt)};

  EXPECT_THROW(config.all_source_topics(), std::bad_optional_access);
}

// The state of a pass

using Directive_Config_Processing::Error;
constexpr auto rejected_document = Error::Category::rejected_document;
constexpr auto failed_processing = Error::Category::failed_processing;

Trigger_Config_State a_full_state() {
  Trigger_Config_State state;
  state.applied_triggers[7] = {true};
  state.onvif_topics_by_trigger[7][10] = {"topic"};
  state.add_error(failed_processing, "went wrong");
  state.subscriptions_by_trigger[7] = {3};
  state.search_items_by_trigger[7][10] = {{"person", true}};
  state.properties.nack_delay = Notification_Properties::Milliseconds(5);
  return state;
}

void expect_full(const Trigger_Config_State& state) {
  EXPECT_THAT(state.applied_triggers, SizeIs(1));
  EXPECT_TRUE(state.applied_triggers.at(7).any_time);
  EXPECT_THAT(state.onvif_topics_by_trigger, SizeIs(1));
  EXPECT_THAT(state.onvif_topics_by_trigger.at(7).at(10), ElementsAre("topic"));
  ASSERT_THAT(state.errors, SizeIs(1));
  EXPECT_EQ(state.errors[0].category, failed_processing);
  EXPECT_EQ(state.errors[0].message, "went wrong");
  EXPECT_THAT(state.subscriptions_by_trigger.at(7), ElementsAre(3));
  ASSERT_THAT(state.search_items_by_trigger.at(7).at(10), SizeIs(1));
  EXPECT_EQ(state.search_items_by_trigger.at(7).at(10).begin()->object_type, "person");
  EXPECT_TRUE(state.search_items_by_trigger.at(7).at(10).begin()->motion_required);
  EXPECT_EQ(state.properties.nack_delay->count(), 5U);
}

void expect_empty(const Trigger_Config_State& state) {
  EXPECT_THAT(state.applied_triggers, IsEmpty());
  EXPECT_THAT(state.onvif_topics_by_trigger, IsEmpty());
  EXPECT_THAT(state.errors, IsEmpty());
  EXPECT_THAT(state.subscriptions_by_trigger, IsEmpty());
  EXPECT_THAT(state.search_items_by_trigger, IsEmpty());
  EXPECT_FALSE(state.properties.max_latency);
  EXPECT_FALSE(state.properties.digest_cooldown);
  EXPECT_FALSE(state.properties.ack_timeout);
  EXPECT_FALSE(state.properties.nack_delay);
}

TEST(State_Of_A_Pass, starts_empty) {
  expect_empty(Trigger_Config_State());
}

TEST(State_Of_A_Pass, keeps_its_fields_in_the_order_that_pushers_were_built_with) {
  const Trigger_Config_State state;
  EXPECT_TRUE(lie_in_order(state.applied_triggers, state.onvif_topics_by_trigger, state.errors,
                           state.subscriptions_by_trigger, state.search_items_by_trigger,
                           state.properties));
  const Error error;
  EXPECT_TRUE(lie_in_order(error.category, error.message));
  EXPECT_TRUE((std::is_same_v<std::underlying_type_t<Error::Category>, std::int32_t>));
  EXPECT_EQ(static_cast<int>(rejected_document), 0);
  EXPECT_EQ(static_cast<int>(failed_processing), 1);
}

TEST(State_Of_A_Pass, keeps_every_error_in_the_order_of_the_calls) {
  Trigger_Config_State state;

  state.add_error(failed_processing, "b");
  state.add_error(rejected_document, "a");
  state.add_error(failed_processing, "b");
  state.add_error(static_cast<Error::Category>(7), "");

  ASSERT_THAT(state.errors, SizeIs(4));
  EXPECT_EQ(state.errors[0].message, "b");
  EXPECT_EQ(state.errors[0].category, failed_processing);
  EXPECT_EQ(state.errors[1].message, "a");
  EXPECT_EQ(state.errors[1].category, rejected_document);
  EXPECT_EQ(state.errors[2].message, "b");
  EXPECT_EQ(state.errors[2].category, failed_processing);
  EXPECT_EQ(state.errors[3].message, "");
  EXPECT_EQ(static_cast<int>(state.errors[3].category), 7);
}

TEST(State_Of_A_Pass, leaves_it_to_others_to_log_an_error) {
  const Log_Capture log;
  Trigger_Config_State state;

  state.add_error(failed_processing, "went wrong");

  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(State_Of_A_Pass, has_no_limit_of_errors) {
  Trigger_Config_State state;
  for (int count = 0; count < 100'000; ++count) {
    state.add_error(failed_processing, "same text");
  }
  EXPECT_THAT(state.errors, SizeIs(100'000));
}

TEST(State_Of_A_Pass, is_copied_with_all_that_it_holds) {
  const Trigger_Config_State original = a_full_state();
  const Trigger_Config_State copy = original;
  Trigger_Config_State assigned;
  assigned = original;

  expect_full(copy);
  expect_full(assigned);
}

TEST(State_Of_A_Pass, leaves_its_copies_alone_when_it_changes) {
  Trigger_Config_State original = a_full_state();
  const Trigger_Config_State copy = original;

  original.applied_triggers.clear();
  original.onvif_topics_by_trigger[7][10].insert("another");
  original.errors[0].message += " again";
  original.subscriptions_by_trigger[7].insert(4);
  original.search_items_by_trigger[7][10].clear();
  original.properties = {};

  expect_full(copy);
}

TEST(State_Of_A_Pass, is_left_alone_when_a_copy_changes) {
  const Trigger_Config_State original = a_full_state();
  {
    Trigger_Config_State copy = original;
    copy.add_error(failed_processing, "another");
    copy.onvif_topics_by_trigger.clear();
    copy.applied_triggers[7].any_time = false;
  }
  expect_full(original);
}

TEST(State_Of_A_Pass, lists_ids_in_ascending_order_as_unsigned_numbers) {
  Trigger_Config_State state;
  for (const std::uint64_t id : {18446744073709551615U, std::uint64_t{0}, 9223372036854775808U}) {
    state.applied_triggers[id];
    state.subscriptions_by_trigger[1].insert(id);
    state.onvif_topics_by_trigger[1][id];
  }
  std::vector<std::uint64_t> applied;
  for (const auto& [id, options] : state.applied_triggers) {
    applied.push_back(id);
  }
  std::vector<std::uint64_t> cameras;
  for (const auto& [id, topics] : state.onvif_topics_by_trigger[1]) {
    cameras.push_back(id);
  }

  EXPECT_THAT(applied, ElementsAre(0, 9223372036854775808U, 18446744073709551615U));
  EXPECT_THAT(cameras, ElementsAre(0, 9223372036854775808U, 18446744073709551615U));
  EXPECT_THAT(state.subscriptions_by_trigger[1],
              ElementsAre(0, 9223372036854775808U, 18446744073709551615U));
}

}  // namespace
}  // namespace kuv::test
