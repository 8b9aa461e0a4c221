// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <functional>
#include <ostream>
#include <stdexcept>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using std::chrono::milliseconds;
using testing::_;
using testing::ElementsAre;
using testing::Return;
using testing::Throw;
using Mode = Activity_Duration_Mode;

/// One trigger with everything that a record keeps.
Trigger_Builder a_full_trigger() {
  return an_active_trigger(7)
      .named("gate")
      .scheduled_by({1, 2})
      .with(generic_events())
      .with(onvif("tns1:A"))
      .with(with_duration(object_detection("person", true), Mode::object_track, milliseconds(5000),
                          milliseconds(1000)));
}

bool equal(const Trigger_Source& left, const Trigger_Source& right) {
  const auto& a = left.activity_duration;
  const auto& b = right.activity_duration;
  return left.type == right.type && left.onvif_topic == right.onvif_topic &&
         left.search_item == right.search_item && a.has_value() == b.has_value() &&
         (!a ||
          (a->mode == b->mode && a->min_duration == b->min_duration && a->dropout == b->dropout));
}

bool holds(const trigger& record, const Trigger_Config& config) {
  const auto same_schedule = [](const auto& a, const auto& b) { return a.schedule == b.schedule; };
  return record.id == config.id && record.name == config.name &&
         std::equal(record.schedules.begin(), record.schedules.end(), config.schedules.begin(),
                    config.schedules.end(), same_schedule) &&
         std::equal(record.sources.begin(), record.sources.end(), config.sources.begin(),
                    config.sources.end(), equal);
}

class Trigger_Records : public Manager_Test {
 protected:
  /// The steps behind the record, whatever sources the trigger has.
  void expect_sources_left_alone() {
    EXPECT_CALL(database.cameras, get_cameras_needing_subscription(_, _))
        .Times(testing::AnyNumber());
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(testing::AtLeast(2));
    EXPECT_CALL(database.cameras, get_object_detection_cameras(_)).Times(testing::AnyNumber());
    EXPECT_CALL(database.cameras, get_motion_detection_cameras(_)).Times(testing::AnyNumber());
    EXPECT_CALL(database.eta_cameras, get(_));
  }

  /// Applies the trigger on a database that holds this record of it.
  void apply(const Trigger_Config& config, const Trigger_Record& held, int updates) {
    expect_parsing({config});
    expect_lookup(config.id, held);
    EXPECT_CALL(database.triggers, update(held)).Times(updates).WillRepeatedly(Return(true));
    expect_sources_left_alone();
    expect_end({config.id});
    when_the_configuration_is_updated();
    then_it_succeeds();
  }
};

TEST_F(Trigger_Records, are_added_once_for_a_trigger_that_has_none) {
  const Trigger_Config config = a_full_trigger();
  Trigger_Record added;
  expect_parsing({config});
  expect_lookup(7, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce([&added](const Trigger_Record& record) {
    added = record;
    return true;
  });
  expect_sources_left_alone();
  expect_end({7});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_TRUE(holds(*added, config));
}

TEST_F(Trigger_Records, new_or_found_are_the_ones_that_source_processing_works_on) {
  const Trigger_Config is_new = an_active_trigger(7);
  const Trigger_Config is_found = an_active_trigger(8);
  Trigger_Record added;
  const auto is_for = [](const Trigger_Record& record) {
    return [&record](const Subscription_Query& query) {
      EXPECT_EQ(query.trigger, record);
      return Subscriptions();
    };
  };
  expect_parsing({is_new, is_found});
  expect_lookup(7, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce([&added](const Trigger_Record& record) {
    added = record;
    return true;
  });
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
      .Times(2)
      .WillRepeatedly(is_for(added));
  EXPECT_CALL(database.eta_cameras, get(_)).WillOnce([&added](const ETA_Query& query) {
    EXPECT_EQ(query.trigger, added);
    return ETA_Records();
  });
  expect_no_sources(expect_found(is_found));
  expect_end({7, 8});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

TEST_F(Trigger_Records, of_an_unchanged_trigger_are_not_written) {
  const Trigger_Config config = a_full_trigger();
  apply(config, stored(config), 0);
}

TEST_F(Trigger_Records, are_looked_up_alone_when_the_same_configuration_comes_again) {
  const Trigger_Config config = a_full_trigger();
  const Trigger_Record held = stored(an_active_trigger(7));
  apply(config, held, 1);
  apply(config, held, 0);
}

TEST_F(Trigger_Records, are_compared_by_the_ids_of_schedules_and_not_by_their_addresses) {
  const Trigger_Record held = stored(a_full_trigger());
  const auto before = held->schedules.begin()->schedule;

  apply(a_full_trigger().scheduled_by({2, 1}), held, 0);

  EXPECT_EQ(held->schedules.begin()->schedule, before);
}

TEST_F(Trigger_Records, of_a_renamed_trigger_take_the_name_and_nothing_else) {
  const Trigger_Record held = stored(a_full_trigger());
  const trigger before = *held;

  apply(a_full_trigger().named("Gate"), held, 1);

  EXPECT_EQ(held->name, "Gate");
  const auto schedule_of = [](const trigger& record) { return record.schedules.begin()->schedule; };
  EXPECT_EQ(schedule_of(*held), schedule_of(before));
  EXPECT_TRUE(std::equal(held->sources.begin(), held->sources.end(), before.sources.begin(),
                         before.sources.end(), equal));
}

TEST_F(Trigger_Records, are_compared_by_name_byte_for_byte) {
  const Trigger_Record held = stored(a_full_trigger().named(std::string("a\0b", 3)));
  apply(a_full_trigger().named(std::string("a\0c", 3)), held, 1);
  EXPECT_EQ(held->name, std::string("a\0c", 3));
}

/// What may differ between the record and the configuration: the two, and how to call it.
struct Difference {
  const char* what;
  Trigger_Builder held;
  Trigger_Builder wanted;
};

std::ostream& operator<<(std::ostream& stream, const Difference& difference) {
  return stream << difference.what;
}

Trigger_Builder with_source(Trigger_Source source) {
  return an_active_trigger(7).with(std::move(source));
}

Trigger_Source person(bool motion_required = false) {
  return object_detection("person", motion_required);
}

Trigger_Source person_for(Mode mode, int least, int dropout) {
  return with_duration(person(), mode, milliseconds(least), milliseconds(dropout));
}

Trigger_Source without_topic() {
  return Trigger_Source();
}

Trigger_Source without_item() {
  Trigger_Source source = person();
  source.search_item.reset();
  return source;
}

const Difference differences[] = {
    {"the name", an_active_trigger(7).named("a"), an_active_trigger(7).named("b")},
    {"a schedule more", an_active_trigger(7).scheduled_by({1}),
     an_active_trigger(7).scheduled_by({1, 2})},
    {"a schedule less", an_active_trigger(7).scheduled_by({1, 2}),
     an_active_trigger(7).scheduled_by({1})},
    {"the last schedule gone", an_active_trigger(7).scheduled_by({1}), an_active_trigger(7)},
    {"another schedule", an_active_trigger(7).scheduled_by({1, 2}),
     an_active_trigger(7).scheduled_by({1, 3})},
    {"a source more", with_source(onvif("a")), with_source(onvif("a")).with(onvif("b"))},
    {"a source less", with_source(onvif("a")).with(onvif("b")), with_source(onvif("a"))},
    {"another type", with_source(generic_events()), with_source(motion_detection())},
    {"another topic", with_source(onvif("a")), with_source(onvif("b"))},
    {"another object type", with_source(person()), with_source(object_detection("car"))},
    {"motion required", with_source(person()), with_source(person(true))},
    {"motion no longer required", with_source(person(true)), with_source(person())},
    {"a search item where none was", with_source(without_item()), with_source(person())},
    {"a duration where none was", with_source(person()),
     with_source(person_for(Mode::object_presence, 1000, 1000))},
    {"the duration gone", with_source(person_for(Mode::object_presence, 1000, 1000)),
     with_source(person())},
    {"another mode", with_source(person_for(Mode::object_presence, 1000, 1000)),
     with_source(person_for(Mode::object_track, 1000, 1000))},
    {"another least duration", with_source(person_for(Mode::object_track, 1000, 1000)),
     with_source(person_for(Mode::object_track, 2000, 1000))},
    {"another dropout", with_source(person_for(Mode::object_track, 1000, 1000)),
     with_source(person_for(Mode::object_track, 1000, 0))},
    {"the duration of motion",
     with_source(with_duration(motion_detection(), Mode::object_presence, milliseconds(1000),
                               milliseconds(1000))),
     with_source(with_duration(motion_detection(), Mode::object_presence, milliseconds(1001),
                               milliseconds(1000)))},
};

class Changed_Trigger_Records : public Trigger_Records,
                                public testing::WithParamInterface<Difference> {};

TEST_P(Changed_Trigger_Records, are_updated_once_and_then_hold_the_configuration) {
  const Trigger_Record held = stored(GetParam().held);
  apply(GetParam().wanted, held, 1);
  EXPECT_TRUE(holds(*held, GetParam().wanted));
}

INSTANTIATE_TEST_SUITE_P(In, Changed_Trigger_Records, testing::ValuesIn(differences));

TEST_F(Trigger_Records, that_lack_a_topic_are_completed) {
  // Only a broken record has a source of that type without a topic, so nothing but the lookup and
  // the comparison is asked of it here.
  const Trigger_Config config = with_source(onvif("a"));
  const Trigger_Record held = stored(with_source(without_topic()));
  expect_lookup(7, held);
  EXPECT_CALL(database.triggers, update(held)).WillOnce(Return(true));

  auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  EXPECT_EQ((vemora_manager.*open(Get_Trigger_Record()))(config), held);

  EXPECT_TRUE(holds(*held, config));
}

TEST_F(Trigger_Records, of_an_inactive_trigger_are_looked_up_and_never_written) {
  const Trigger_Config elsewhere = a_full_trigger().named("new name").of_another_server();
  const Trigger_Config unscheduled = a_full_trigger().named("new name").without_valid_schedule();
  auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  const auto get_record = open(Get_Trigger_Record());
  for (const Trigger_Config& config : {elsewhere, unscheduled}) {
    const Trigger_Record held = stored(an_active_trigger(7).named("old name"));
    expect_lookup(7, held);
    expect_lookup(7, nullptr);

    EXPECT_EQ((vemora_manager.*get_record)(config), held);
    EXPECT_EQ((vemora_manager.*get_record)(config), nullptr);

    EXPECT_EQ(held->name, "old name");
  }
}

TEST_F(Trigger_Records, that_the_database_does_not_take_are_an_internal_error) {
  auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  const auto error_of = [&](const Trigger_Config& config) {
    try {
      (vemora_manager.*open(Get_Trigger_Record()))(config);
    } catch (const Internal_Error<std::exception>& error) {
      const auto* with_text = dynamic_cast<const Internal_Error<std::runtime_error>*>(&error);
      return std::to_string(error.error_code) + ": " + (with_text ? with_text->what() : "?");
    }
    return std::string("nothing");
  };
  expect_lookup(7, nullptr);
  EXPECT_CALL(database.triggers, add(_)).WillOnce(Return(false));
  expect_lookup(8, stored(an_active_trigger(8).named("old name")));
  EXPECT_CALL(database.triggers, update(_)).WillOnce(Return(false));

  EXPECT_EQ(error_of(an_active_trigger(7)), "-2: Failed to create trigger");
  EXPECT_EQ(error_of(an_active_trigger(8)), "-2: Failed to update trigger");
}

TEST_F(Trigger_Records, that_cannot_be_updated_fail_their_trigger_and_are_not_kept) {
  const Trigger_Record held = stored(an_active_trigger(7).named("old name"));
  const Trigger_Config next = an_active_trigger(8);
  expect_parsing({an_active_trigger(7), next});
  expect_lookup(7, held);
  EXPECT_CALL(database.triggers, update(held)).WillOnce(Return(false));
  expect_no_sources(expect_found(next));
  expect_end({8});

  when_the_configuration_is_updated();

  const std::string text = "Trigger 7: Failed to process config (Failed to update trigger).";
  then_it_succeeds_with({failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
}

TEST_F(Trigger_Records, whose_look_up_fails_fail_their_trigger_with_the_databases_own_words) {
  expect_parsing({an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::range_error("page 12 is bad")));
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds_with(
      {failed_processing("Trigger 7: Failed to process config (page 12 is bad).")});
}

// Reports of records that could not be stored.

class Persistence_Failures : public Manager_Test {
 protected:
  void report(const metadata_event_subscription& subscription) {
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    (vemora_manager.*open(Record_Subscription_Failure()))("It did not {} work", *record,
                                                          subscription);
  }

  void report(const eta_camera& map) {
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    (vemora_manager.*open(Record_Detection_Failure()))("It did not {} work", *record, map);
  }

  void then_reported(const std::string& text) {
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    EXPECT_THAT((vemora_manager.*open(Working_State())).errors,
                ElementsAre(failed_processing(text)));
    EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
  }

  Trigger_Record record = stored(an_active_trigger(7));
};

TEST_F(Persistence_Failures, of_a_detection_record_name_the_camera) {
  report(*an_eta_camera(3, a_camera(10)));
  then_reported("Trigger 7: It did not {} work | camera ID 10");
}

TEST_F(Persistence_Failures, of_a_detection_record_name_a_camera_that_is_not_loaded) {
  report(*an_eta_camera(3, unloaded_link(18446744073709551615U)));
  then_reported("Trigger 7: It did not {} work | camera ID 18446744073709551615");
}

TEST_F(Persistence_Failures, of_a_topic_subscription_name_topic_and_camera) {
  report(*a_topic_subscription(3, a_camera(10), "tns1:{0}/\"A\""));
  then_reported("Trigger 7: It did not {} work | ONVIF topic \"tns1:{0}/\"A\"\", camera ID 10");
}

TEST_F(Persistence_Failures, of_a_topic_subscription_name_a_camera_that_is_not_loaded) {
  report(*a_topic_subscription(3, unloaded_link(10), "a"));
  then_reported("Trigger 7: It did not {} work | ONVIF topic \"a\", camera ID 10");
}

TEST_F(Persistence_Failures, of_a_subscription_without_a_camera_name_nothing_more) {
  report(*a_generic_subscription(3));
  then_reported("Trigger 7: It did not {} work");
}

TEST_F(Persistence_Failures, of_a_subscription_without_a_camera_pass_over_its_topic) {
  report(*a_topic_subscription(3, {}, "a"));
  then_reported("Trigger 7: It did not {} work");
}

TEST_F(Persistence_Failures,
       of_a_subscription_with_a_camera_and_no_topic_are_a_failure_themselves) {
  EXPECT_THROW(report(*a_topic_subscription(3, a_camera(10), std::nullopt)),
               std::bad_optional_access);

  auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  EXPECT_THAT((vemora_manager.*open(Working_State())).errors, ElementsAre());
  EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(Persistence_Failures, with_the_same_text_are_kept_both) {
  report(*a_generic_subscription(3));
  report(*a_generic_subscription(4));

  const auto error = failed_processing("Trigger 7: It did not {} work");
  auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  EXPECT_THAT((vemora_manager.*open(Working_State())).errors, ElementsAre(error, error));
}

}  // namespace
}  // namespace kuv::test
