// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <stdexcept>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

class Object_Detection : public Manager_Test {
 protected:
  /// The trigger, up to the point where its detection sources come to their turn.
  Trigger_Record given(const Trigger_Config& config) {
    expect_parsing({config});
    const Trigger_Record record = expect_found(config);
    expect_no_topics(record);
    expect_no_generic_events(record);
    return record;
  }

  void expect_eligible(const Cameras& answer) {
    EXPECT_CALL(database.cameras, get_object_detection_cameras(IsEmpty())).WillOnce(Return(answer));
  }
  void expect_eligible_for_motion(const Cameras& answer) {
    EXPECT_CALL(database.cameras, get_motion_detection_cameras(IsEmpty())).WillOnce(Return(answer));
  }

  void expect_map(std::uint64_t camera_id, const ETA_Record& answer) {
    EXPECT_CALL(database.eta_cameras, get_by_camera_id(camera_id)).WillOnce(Return(answer));
  }
  void expect_updated(const ETA_Record& map, bool stored = true) {
    EXPECT_CALL(database.eta_cameras, update(map)).WillOnce(Return(stored));
  }
  void expect_added(bool stored = true) {
    EXPECT_CALL(database.eta_cameras, add(_)).WillOnce([this, stored](const ETA_Record& map) {
      added.push_back(map);
      return stored;
    });
  }

  void expect_leaving(const Trigger_Record& record, const Cameras& watched,
                      const ETA_Records& answer = {}) {
    EXPECT_CALL(database.eta_cameras, get(asks_for(maps_holding_outside(record, watched))))
        .WillOnce(Return(answer));
  }

  void when_applied() {
    expect_end({7});
    when_the_configuration_is_updated();
  }

  ETA_Records added;
};

TEST_F(Object_Detection, makes_a_record_for_a_camera_that_has_none) {
  const Trigger_Record record = given(an_active_trigger(7).with(object_detection("person")));
  const Camera_Record camera_record = a_camera(10);
  expect_eligible({camera_record});
  expect_map(10, nullptr);
  expect_added();
  expect_leaving(record, {camera_record});

  when_applied();

  then_it_succeeds();
  ASSERT_EQ(added.size(), 1U);
  EXPECT_EQ(added[0]->camera.get(), camera_record.get());
  EXPECT_THAT(added[0]->triggers, ElementsAre(record));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Object_Detection, adds_the_trigger_to_the_record_of_a_camera_that_has_one) {
  const Trigger_Record record = given(an_active_trigger(7).with(object_detection("person")));
  const Trigger_Record other = stored(an_active_trigger(1));
  const Camera_Record camera_record = a_camera(10);
  const auto map = an_eta_camera(3, camera_record, {other});
  expect_eligible({camera_record});
  expect_map(10, map);
  expect_updated(map);
  expect_leaving(record, {camera_record});

  when_applied();

  then_it_succeeds();
  EXPECT_THAT(map->triggers, ElementsAre(other, record));
}

TEST_F(Object_Detection, stores_no_record_that_holds_the_trigger_already) {
  const Trigger_Record record = given(an_active_trigger(7).with(object_detection("person")));
  const Camera_Record camera_record = a_camera(10);
  expect_eligible({camera_record});
  expect_map(10, an_eta_camera(3, camera_record, {stored(an_active_trigger(7))}));
  expect_leaving(record, {camera_record});

  when_applied();

  then_it_succeeds();
}

TEST_F(Object_Detection, goes_through_its_cameras_by_id_each_of_them_once) {
  const Trigger_Record record =
      given(an_active_trigger(7).with(object_detection("person")).with(motion_detection()));
  const Camera_Record seen_twice = a_camera(12);
  const Camera_Record first = a_camera(10);
  const Camera_Record last = a_camera(18446744073709551615U);
  expect_eligible({last, seen_twice});
  expect_eligible_for_motion({a_camera(12), first});  // another copy of one record
  expect_map(10, nullptr);
  expect_added();
  expect_map(12, nullptr);
  expect_added();
  expect_map(18446744073709551615U, nullptr);
  expect_added();
  expect_leaving(record, {first, seen_twice, last});

  when_applied();

  then_it_succeeds();
}

TEST_F(Object_Detection, asks_once_however_many_objects_are_searched_for) {
  const Trigger_Record record = given(
      an_active_trigger(7).with(object_detection("person")).with(object_detection("vehicle")));
  expect_eligible({});
  expect_leaving(record, {});

  when_applied();

  then_it_succeeds();
}

TEST_F(Object_Detection, asks_for_motion_cameras_alone_for_a_trigger_on_motion) {
  const Trigger_Source lasting_motion =
      with_duration(motion_detection(), Activity_Duration_Mode::object_presence,
                    std::chrono::milliseconds(1000), std::chrono::milliseconds(1000));
  const Trigger_Record record = given(an_active_trigger(7).with(lasting_motion));
  const Camera_Record camera_record = a_camera(10);
  expect_eligible_for_motion({camera_record});
  expect_map(10, nullptr);
  expect_added();
  expect_leaving(record, {camera_record});

  when_applied();

  then_it_succeeds();
  EXPECT_THAT(added[0]->triggers, ElementsAre(record));
}

TEST_F(Object_Detection, takes_a_trigger_off_the_records_of_cameras_it_no_longer_watches) {
  const Trigger_Config config = an_active_trigger(7).with(object_detection("person"));
  const Trigger_Record record = given(config);
  const Trigger_Record other = stored(an_active_trigger(1));
  const auto emptied = an_eta_camera(3, a_camera(11), {record});
  const auto shared = an_eta_camera(4, a_camera(12), {record, other});
  expect_eligible({});
  expect_leaving(record, {}, {emptied, shared});
  expect_updated(emptied);
  expect_updated(shared);

  when_applied();

  then_it_succeeds();
  EXPECT_THAT(emptied->triggers, IsEmpty());  // left in place for the clean-up
  EXPECT_THAT(shared->triggers, ElementsAre(other));
}

TEST_F(Object_Detection, that_is_no_longer_asked_for_takes_the_trigger_off_every_record) {
  for (const Trigger_Source& source : {generic_events(), Trigger_Source{}}) {
    Trigger_Source other = source;
    if (other.type == Trigger_Source_Type::onvif_metadata) {
      other.type = Trigger_Source_Type::audio_detection;
    }
    const Trigger_Config config = an_active_trigger(7).with(other);
    expect_parsing({config});
    const Trigger_Record record = expect_found(config);
    const auto map = an_eta_camera(3, a_camera(11), {record});
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(2);
    expect_leaving(record, {}, {map});
    expect_updated(map);

    when_applied();

    then_it_succeeds();
    EXPECT_THAT(map->triggers, IsEmpty());
  }
}

TEST_F(Object_Detection, stores_every_record_it_takes_the_trigger_off_even_if_it_was_not_there) {
  const Trigger_Record record = given(an_active_trigger(7));
  const auto without_it = an_eta_camera(3, a_camera(11));
  expect_leaving(record, {}, {without_it});
  expect_updated(without_it);

  when_applied();

  then_it_succeeds();
}

TEST_F(Object_Detection, reports_each_record_that_cannot_be_stored_and_goes_on) {
  const Trigger_Record record = given(an_active_trigger(7).with(object_detection("person")));
  const Cameras watched{a_camera(10), a_camera(11), a_camera(12), a_camera(13)};
  const auto refused = an_eta_camera(3, watched[0]);
  const auto joined = an_eta_camera(4, watched[1]);
  const auto kept = an_eta_camera(5, a_camera(14), {record});
  const auto left = an_eta_camera(6, a_camera(15), {record});
  expect_eligible(watched);
  expect_map(10, refused);
  expect_updated(refused, false);
  expect_map(11, joined);
  expect_updated(joined);
  expect_map(12, nullptr);
  expect_added(false);
  expect_map(13, nullptr);
  expect_added();
  expect_leaving(record, watched, {kept, left});
  expect_updated(kept, false);
  expect_updated(left);

  when_applied();

  const std::string adding = "Trigger 7: Failed to add trigger to ETA camera map | camera ID 10";
  const std::string creating =
      "Trigger 7: Failed to create ETA camera map for trigger | camera ID 12";
  const std::string removing =
      "Trigger 7: Failed to remove trigger from object detection map | camera ID 14";
  then_it_succeeds_with(
      {failed_processing(adding), failed_processing(creating), failed_processing(removing)});
  EXPECT_THAT(log.lines(),
              ElementsAre(error_line(adding), error_line(creating), error_line(removing)));
}

TEST_F(Object_Detection, does_not_note_its_cameras_for_reconciliation) {
  const Trigger_Record record = given(an_active_trigger(7).with(object_detection("person")));
  const Camera_Record camera_record = a_camera(10);
  const auto left = an_eta_camera(6, a_camera(15), {record});
  expect_eligible({camera_record});
  expect_map(10, nullptr);
  expect_added();
  expect_leaving(record, {camera_record}, {left});
  expect_updated(left);

  when_applied();  // the capture manager hears nothing

  then_it_succeeds();
}

// What is searched for.

class Search_Items : public Manager_Test {
 protected:
  using Items = std::set<Object_Search_Item>;
  using Names = std::vector<std::string>;

  void expect_resolved(const std::string& name, const Names& answer) {
    EXPECT_CALL(*resolver, resolve(Names{name})).WillOnce(Return(answer));
  }

  Items expand(const Items& items) {
    const auto& vemora_manager = dynamic_cast<const Vemora_Trigger_Manager&>(*manager);
    return (vemora_manager.*open(Expand_Search_Items()))(items);
  }
};

TEST_F(Search_Items, are_resolved_one_by_one_in_order) {
  expect_resolved("person", {"person"});
  expect_resolved("vehicle", {"truck", "car"});

  EXPECT_THAT(expand({{"vehicle", true}, {"person", false}}),
              ElementsAre(Object_Search_Item{"car", true}, Object_Search_Item{"person", false},
                          Object_Search_Item{"truck", true}));
}

TEST_F(Search_Items, require_motion_of_a_type_only_if_all_that_stand_for_it_do) {
  expect_resolved("a", {"both", "first", "mixed", "mixed too"});
  expect_resolved("b", {"both", "mixed", "second"});
  expect_resolved("c", {"mixed too", "both"});

  EXPECT_THAT(expand({{"a", true}, {"b", false}, {"c", true}}),
              ElementsAre(Object_Search_Item{"both", false}, Object_Search_Item{"first", true},
                          Object_Search_Item{"mixed", false}, Object_Search_Item{"mixed too", true},
                          Object_Search_Item{"second", false}));
}

TEST_F(Search_Items, do_not_regain_the_motion_flag_that_an_earlier_one_took) {
  expect_resolved("a", {"car"});
  expect_resolved("b", {"car"});

  EXPECT_THAT(expand({{"a", false}, {"b", true}}), ElementsAre(Object_Search_Item{"car", false}));
}

TEST_F(Search_Items, that_resolve_to_one_name_twice_or_to_none_are_no_fault) {
  expect_resolved("a", {"car", "car"});
  expect_resolved("b", {});

  EXPECT_THAT(expand({{"a", true}, {"b", true}}), ElementsAre(Object_Search_Item{"car", true}));
}

TEST_F(Search_Items, that_are_none_ask_nobody) {
  EXPECT_THAT(expand({}), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
