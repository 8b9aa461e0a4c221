// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <boost/property_tree/ptree.hpp>
#include <stdexcept>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"

namespace kuv::test {
namespace {

using boost::property_tree::ptree;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

std::string creating(std::uint64_t camera_id, const std::string& topic) {
  return "Trigger 7 | Creating subscription for camera " + std::to_string(camera_id) +
         " with ONVIF topic " + topic;
}

std::string skipping(std::uint64_t camera_id) {
  return "Trigger 7 | Skipping subscription creation for tagged camera " +
         std::to_string(camera_id) + ": no metadata capabilities to support onvif-metadata source.";
}

/// A trigger, 7, on topics, without a camera filter unless said otherwise.
class Topic_Subscriptions : public Manager_Test {
 protected:
  Trigger_Record given_trigger_on(std::initializer_list<const char*> topics) {
    Trigger_Builder trigger = an_active_trigger(7);
    for (const char* topic : topics) {
      trigger.with(onvif(topic));
      topics_.emplace_back(topic);
    }
    expect_parsing({trigger});
    return record_ = expect_found(trigger);
  }

  void expect_lacking(const std::string& topic, const Cameras& cameras) {
    EXPECT_CALL(database.cameras, get_cameras_needing_subscription(topic, IsEmpty()))
        .WillOnce(Return(cameras));
  }

  void expect_added(bool stored = true) {
    EXPECT_CALL(database.subscriptions, add(_)).WillOnce([this, stored](const auto& subscription) {
      added.push_back(subscription);
      return stored;
    });
  }

  void expect_stored(const Subscription_Record& subscription, bool stored = true) {
    EXPECT_CALL(database.subscriptions, update(subscription)).WillOnce(Return(stored));
  }

  /// The trigger joins these and leaves those.
  void expect_joining(const Subscriptions& answer = {}) {
    EXPECT_CALL(
        database.subscriptions,
        Get_Matching_Subscriptions(asks_for(topic_subscriptions_lacking(record_, topics_, {}))))
        .WillOnce(Return(answer));
  }
  void expect_leaving(const Subscriptions& answer = {}) {
    EXPECT_CALL(
        database.subscriptions,
        Get_Matching_Subscriptions(asks_for(subscriptions_holding_outside(record_, topics_, {}))))
        .WillOnce(Return(answer));
  }

  void expect_rest(std::vector<std::uint64_t> reconciled = {}) {
    expect_no_generic_events(record_);
    expect_no_detection(record_);
    expect_end({7}, std::move(reconciled));
  }

  /// A pass in which only these cameras lack a subscription to the one topic, and none is made.
  void then_nothing_is_made_for(const Camera_Record& camera_record, const std::string& topic) {
    given_trigger_on({topic.c_str()});
    expect_lacking(topic, {camera_record});
    expect_joining();
    expect_leaving();
    expect_rest();
    when_the_configuration_is_updated();
    then_it_succeeds();
  }

  Subscriptions added;

 private:
  std::vector<std::string> topics_;
  Trigger_Record record_;
};

TEST_F(Topic_Subscriptions, are_made_for_a_camera_that_can_send_the_topic) {
  const Trigger_Record record = given_trigger_on({"tns1:A"});
  const Camera_Record camera_record = a_camera_sending(10, {"tns1:Other", "tns1:A"});
  expect_lacking("tns1:A", {camera_record});
  expect_added();
  expect_joining();
  expect_leaving();
  expect_rest({10});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(log.lines(), ElementsAre(info_line(creating(10, "tns1:A"))));
  ASSERT_EQ(added.size(), 1U);
  EXPECT_EQ(added[0]->name, "tns1:A");
  EXPECT_EQ(added[0]->onvif_topic, "tns1:A");
  EXPECT_EQ(added[0]->camera.get(), camera_record.get());
  ASSERT_EQ(added[0]->trigger_links.size(), 1U);
  EXPECT_EQ(added[0]->trigger_links[0].get(), record.get());
  EXPECT_FALSE(added[0]->category);
  EXPECT_THAT(added[0]->tags, IsEmpty());
  EXPECT_THAT(added[0]->camera_links, IsEmpty());
}

TEST_F(Topic_Subscriptions, are_made_topic_by_topic_and_camera_by_camera) {
  given_trigger_on({"b", "a", "C"});  // "C" sorts first, by bytes
  const Camera_Record first = a_camera_sending(12, {"a", "b", "C"});
  const Camera_Record second = a_camera_sending(10, {"a", "b", "C"});
  expect_lacking("C", {first});
  expect_lacking("a", {});
  expect_lacking("b", {first, second});
  expect_added();
  expect_added();
  expect_added();
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(3);
  EXPECT_CALL(database.eta_cameras, get(_));
  expect_end({7}, {10, 12});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(log.lines(), ElementsAre(info_line(creating(12, "C")), info_line(creating(12, "b")),
                                       info_line(creating(10, "b"))));
  EXPECT_EQ(added[0]->camera.get(), first.get());
  EXPECT_EQ(added[0]->onvif_topic, "C");
  EXPECT_EQ(added[1]->camera.get(), first.get());
  EXPECT_EQ(added[1]->onvif_topic, "b");
  EXPECT_EQ(added[2]->camera.get(), second.get());
  EXPECT_EQ(added[2]->onvif_topic, "b");
}

TEST_F(Topic_Subscriptions, say_they_are_made_before_they_are_added) {
  given_trigger_on({"a"});
  expect_lacking("a", {a_camera_sending(10, {"a"})});
  EXPECT_CALL(database.subscriptions, add(_)).WillOnce([this](const auto&) {
    EXPECT_THAT(log.lines(), ElementsAre(info_line(creating(10, "a"))));
    return true;
  });
  expect_joining();
  expect_leaving();
  expect_rest({10});

  when_the_configuration_is_updated();
}

TEST_F(Topic_Subscriptions, are_not_made_for_a_camera_that_says_nothing_of_itself) {
  then_nothing_is_made_for(a_camera(10), "a");
  EXPECT_THAT(log.lines(), ElementsAre(debug_line(skipping(10))));
}

TEST_F(Topic_Subscriptions, are_not_made_for_a_camera_whose_document_lacks_a_part_of_the_path) {
  ptree document;
  document.put("Metadata.Mode.capabilities.On.TopicFilter.a", "");
  document.put("Metadata.Mode.capabilities.Off.TopicFilter.capabilities.a", "");
  document.put("a", "");
  then_nothing_is_made_for(a_camera_with(18446744073709551615U, document), "a");
  EXPECT_THAT(log.lines(), ElementsAre(debug_line(skipping(18446744073709551615U))));
}

TEST_F(Topic_Subscriptions, are_not_made_for_a_camera_whose_topic_filter_is_empty) {
  ptree document;
  document.put(topic_filter_path, "a");  // text, and no children
  then_nothing_is_made_for(a_camera_with(10, document), "a");
  EXPECT_THAT(log.lines(), ElementsAre(debug_line(skipping(10))));
}

TEST_F(Topic_Subscriptions, are_silently_not_made_for_a_camera_without_that_very_topic) {
  for (const char* topic : {"tns1:A", "tns1:a/b", "tns1:", "TNS1:A/B", "tns1:A/B/C", "tns1:A/B "}) {
    const Log_Capture nothing;
    given_trigger_on({topic});
    const Camera_Record camera_record = a_camera_sending(10, {"tns1:A/B"});
    expect_lacking(topic, {camera_record});
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(3);
    EXPECT_CALL(database.eta_cameras, get(_));
    expect_end({7});
    when_the_configuration_is_updated();
    then_it_succeeds();
    EXPECT_THAT(nothing.lines(), IsEmpty()) << topic;
  }
}

TEST_F(Topic_Subscriptions, match_a_topic_whole_whatever_is_in_it) {
  for (const char* topic : {"tns1:RuleEngine/CellMotionDetector/Motion", "a.b.c", "a.b/c//.", ".",
                            "tns1:IVA/Eindringen in Feld 1", "a\x07z", "{}"}) {
    const Log_Capture one_line;
    const Trigger_Config config = an_active_trigger(7).with(onvif(topic));
    expect_parsing({config});
    expect_found(config);
    expect_lacking(topic, {a_camera_sending(10, {topic})});
    expect_added();
    EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_)).Times(3);
    EXPECT_CALL(database.eta_cameras, get(_));
    expect_end({7}, {10});
    when_the_configuration_is_updated();
    then_it_succeeds();
    EXPECT_THAT(one_line.lines(), ElementsAre(info_line(creating(10, topic))));
    EXPECT_EQ(added.back()->onvif_topic, topic);
  }
}

TEST_F(Topic_Subscriptions, are_not_found_along_the_parts_of_a_topic) {
  ptree nested;
  nested.put("tns1:A.B", "");  // a child "tns1:A" with a child "B"
  nested.put(ptree::path_type("tns1:C/D", '/'), "");
  ptree document;
  document.put_child(topic_filter_path, nested);
  const Camera_Record camera_record = a_camera_with(10, document);

  given_trigger_on({"tns1:A.B", "tns1:C/D"});
  expect_lacking("tns1:A.B", {camera_record});
  expect_lacking("tns1:C/D", {camera_record});
  expect_joining();
  expect_leaving();
  expect_rest();
  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Topic_Subscriptions, judge_each_camera_by_itself) {
  given_trigger_on({"a"});
  expect_lacking("a", {a_camera(10), a_camera_sending(11, {"b"}), a_camera_sending(12, {"a"})});
  expect_added();
  expect_joining();
  expect_leaving();
  expect_rest({12});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(log.lines(), ElementsAre(debug_line(skipping(10)), info_line(creating(12, "a"))));
}

TEST_F(Topic_Subscriptions, that_cannot_be_added_are_reported_and_their_cameras_left_alone) {
  given_trigger_on({"a"});
  expect_lacking("a", {a_camera_sending(10, {"a"}), a_camera_sending(11, {"a"})});
  expect_added(false);
  expect_added();
  expect_joining();
  expect_leaving();
  expect_rest({11});

  when_the_configuration_is_updated();

  const std::string text =
      "Trigger 7: Failed to create subscription for trigger | ONVIF topic \"a\", camera ID 10";
  then_it_succeeds_with({failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(info_line(creating(10, "a")), error_line(text),
                                       info_line(creating(11, "a"))));
  EXPECT_THAT(pushed->applied_triggers, testing::SizeIs(1));  // the trigger is applied all the same
}

TEST_F(Topic_Subscriptions, whose_capabilities_cannot_be_read_fail_the_trigger) {
  given_trigger_on({"a"});
  auto unreadable = std::make_shared<camera>();
  unreadable->id = 10;
  unreadable->capabilities = Capability_Document(
      []() -> std::shared_ptr<const ptree> { throw std::runtime_error("no such file"); });
  expect_lacking("a", {unreadable});
  expect_end({});

  when_the_configuration_is_updated();

  then_it_succeeds_with({failed_processing("Trigger 7: Failed to process config (no such file).")});
}

TEST_F(Topic_Subscriptions, that_exist_take_the_trigger_in_and_have_their_cameras_reconciled) {
  const Trigger_Record record = given_trigger_on({"a", "b"});
  const Trigger_Record other = stored(an_active_trigger(1));
  const auto first = a_topic_subscription(3, a_camera(12), "b", {other});
  const auto second = a_topic_subscription(4, unloaded_link(10), "a");
  expect_lacking("a", {});
  expect_lacking("b", {});
  expect_joining({first, second});
  expect_stored(first);
  expect_stored(second);
  expect_leaving();
  expect_rest({10, 12});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(first->trigger_ids(), ElementsAre(1, 7));
  EXPECT_THAT(second->trigger_ids(), ElementsAre(7));
  EXPECT_EQ(second->trigger_links[0].get(), record.get());
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Topic_Subscriptions, outside_the_topics_or_cameras_lose_the_trigger) {
  const Trigger_Record record = given_trigger_on({"a"});
  const Trigger_Record other = stored(an_active_trigger(1));
  const auto first = a_topic_subscription(3, a_camera(12), "b", {record, other});
  const auto second = a_topic_subscription(4, unloaded_link(10), "c", {record});
  expect_lacking("a", {});
  expect_joining();
  expect_leaving({first, second});
  expect_stored(first);
  expect_stored(second);
  expect_rest({10, 12});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(first->trigger_ids(), ElementsAre(1));
  EXPECT_THAT(second->trigger_ids(), IsEmpty());
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Topic_Subscriptions, are_stored_and_reconciled_even_if_they_did_not_change) {
  const Trigger_Record record = given_trigger_on({"a"});
  const auto holding_it_already = a_topic_subscription(3, a_camera(10), "a", {record});
  const auto lacking_it_already = a_topic_subscription(4, a_camera(11), "b");
  expect_lacking("a", {});
  expect_joining({holding_it_already});
  expect_stored(holding_it_already);
  expect_leaving({lacking_it_already});
  expect_stored(lacking_it_already);
  expect_rest({10, 11});

  when_the_configuration_is_updated();

  then_it_succeeds();
  EXPECT_THAT(holding_it_already->trigger_ids(), ElementsAre(7));
  EXPECT_THAT(lacking_it_already->trigger_ids(), IsEmpty());
}

TEST_F(Topic_Subscriptions, that_cannot_be_updated_are_reported_and_the_rest_goes_on) {
  const Trigger_Record record = given_trigger_on({"a"});
  const auto refused = a_topic_subscription(3, a_camera(10), "a");
  const auto joined = a_topic_subscription(4, a_camera(11), "a");
  const auto kept = a_topic_subscription(5, a_camera(12), "b", {record});
  const auto left = a_topic_subscription(6, a_camera(13), "b", {record});
  expect_lacking("a", {});
  expect_joining({refused, joined});
  expect_stored(refused, false);
  expect_stored(joined);
  expect_leaving({kept, left});
  expect_stored(kept, false);
  expect_stored(left);
  expect_rest({11, 13});

  when_the_configuration_is_updated();

  const std::string adding =
      "Trigger 7: Failed to add trigger to subscription 3 | ONVIF topic \"a\", camera ID 10";
  const std::string removing =
      "Trigger 7: Failed to remove trigger from subscription 5 | ONVIF topic \"b\", camera ID 12";
  then_it_succeeds_with({failed_processing(adding), failed_processing(removing)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(adding), error_line(removing)));
  // What was changed in memory is not undone.
  EXPECT_THAT(refused->trigger_ids(), ElementsAre(7));
  EXPECT_THAT(kept->trigger_ids(), IsEmpty());
}

TEST_F(Topic_Subscriptions, that_are_corrupt_and_cannot_be_updated_fail_the_trigger) {
  given_trigger_on({"a"});
  const auto corrupt = a_topic_subscription(3, a_camera(10), std::nullopt);
  expect_lacking("a", {});
  expect_joining({corrupt});
  expect_stored(corrupt, false);
  expect_end({});

  when_the_configuration_is_updated();

  const std::string text = "Trigger 7: Failed to process config (bad optional access).";
  then_it_succeeds_with({failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
}

TEST_F(Topic_Subscriptions, that_are_corrupt_and_can_be_updated_are_no_fault) {
  given_trigger_on({"a"});
  const auto corrupt = a_topic_subscription(3, a_camera(10), std::nullopt);
  expect_lacking("a", {});
  expect_joining({corrupt});
  expect_stored(corrupt);
  expect_leaving();
  expect_rest({10});

  when_the_configuration_is_updated();

  then_it_succeeds();
}

// Steps that other steps share, each by itself.

class Subscription_Helpers : public Manager_Test {
 protected:
  Vemora_Trigger_Manager& vemora_manager() {
    return dynamic_cast<Vemora_Trigger_Manager&>(*manager);
  }

  const std::set<std::uint64_t>& cameras_to_reconcile() {
    return vemora_manager().*open(Cameras_To_Reconcile());
  }

  void expect_lacking(const std::string& topic, const Cameras& cameras, const Cameras& lacking) {
    EXPECT_CALL(database.cameras, get_cameras_needing_subscription(topic, cameras))
        .WillOnce(Return(lacking));
  }
};

TEST_F(Subscription_Helpers, list_the_cameras_that_lack_a_topic_and_leave_out_topics_nobody_lacks) {
  const Cameras cameras{a_camera(10), a_camera(11)};
  const Cameras first{cameras[0]};
  expect_lacking("b", cameras, first);
  expect_lacking("a", cameras, {});
  expect_lacking("c", cameras, cameras);

  const auto lacking =
      (vemora_manager().*open(Get_Cameras_That_Need_Subscriptions()))({"b", "a", "c"}, cameras);

  EXPECT_EQ(lacking, (std::map<std::string, Cameras>{{"b", first}, {"c", cameras}}));
}

TEST_F(Subscription_Helpers, keep_the_first_answer_for_a_topic_that_comes_twice) {
  const Cameras first{a_camera(10)};
  const Cameras second{a_camera(11)};
  expect_lacking("a", {}, first);
  expect_lacking("a", {}, second);

  const auto lacking =
      (vemora_manager().*open(Get_Cameras_That_Need_Subscriptions()))({"a", "a"}, {});

  EXPECT_EQ(lacking, (std::map<std::string, Cameras>{{"a", first}}));
}

TEST_F(Subscription_Helpers, take_a_later_answer_for_a_topic_that_nobody_lacked_at_first) {
  const Cameras cameras{a_camera(11)};
  expect_lacking("a", {}, {});
  expect_lacking("a", {}, cameras);

  const auto lacking =
      (vemora_manager().*open(Get_Cameras_That_Need_Subscriptions()))({"a", "a"}, {});

  EXPECT_EQ(lacking, (std::map<std::string, Cameras>{{"a", cameras}}));
}

TEST_F(Subscription_Helpers, ask_nobody_about_no_topics) {
  EXPECT_THAT((vemora_manager().*open(Get_Cameras_That_Need_Subscriptions()))({}, {a_camera(10)}),
              IsEmpty());
}

TEST_F(Subscription_Helpers, note_the_camera_of_a_subscription_that_was_stored) {
  const auto loaded = a_topic_subscription(3, a_camera(10), "a");
  const auto not_loaded = a_topic_subscription(4, unloaded_link(11), "a");
  const auto generic = a_generic_subscription(5);
  const auto refused = a_topic_subscription(6, a_camera(12), "a");
  EXPECT_CALL(database.subscriptions, update(loaded)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, update(not_loaded)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, update(generic)).WillOnce(Return(true));
  EXPECT_CALL(database.subscriptions, update(refused)).WillOnce(Return(false));
  const auto update = [this](const Subscription_Record& subscription) {
    return (vemora_manager().*open(Update_Subscription_Record()))(subscription);
  };

  EXPECT_TRUE(update(loaded));
  EXPECT_TRUE(update(not_loaded));
  EXPECT_TRUE(update(generic));
  EXPECT_FALSE(update(refused));

  EXPECT_THAT(cameras_to_reconcile(), ElementsAre(10, 11));
}

TEST_F(Subscription_Helpers, do_nothing_with_an_empty_list) {
  const Trigger_Record record = stored(an_active_trigger(7));
  (vemora_manager().*open(Add_Trigger_To_Subscriptions()))(record, {});
  (vemora_manager().*open(Remove_Trigger_From_Subscriptions()))(record, {});
  EXPECT_THAT(cameras_to_reconcile(), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
