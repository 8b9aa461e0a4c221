#include "embedded_server/persistent/database_test.h"
#include "embedded_server/persistent/plain_model.h"
#include "support/random_draws.h"

namespace kuv::test {
namespace {

using Subscription_Query = Plain_Model::Subscription_Query;
using Detection_Query = Plain_Model::Detection_Query;
using Ids = Plain_Model::Ids;
using Terms = Plain_Model::Terms;

const std::vector<std::uint64_t> camera_ids{
    0, 1, 2, 10, largest_signed_id, first_unsigned_id, largest_id};
const std::vector<std::uint64_t> trigger_ids{
    0, 3, 7, 8, largest_signed_id, first_unsigned_id, 11, 12, largest_id};
const std::vector<std::uint64_t> generic_ids{2, 5, 100, first_unsigned_id, largest_id};
const std::vector<std::string> topics{"a", "b", "a.b", "tns1:Device/Trigger/DigitalInput",
                                      "tns1:RuleEngine/CellMotionDetector/Motion//."};
const std::vector<std::string> tag_names{"door", "site"};
const std::vector<std::optional<std::string>> tag_values{std::nullopt, "", "north", "south"};

/// A small site, written to and asked at random, always the same way; every answer is compared.
class Repositories_Against_Model : public Contract_Test, protected Random_Draws {
 protected:
  Repositories_Against_Model() : Random_Draws(20240229) { describe_the_site(); }

  /// Some of them, at times with one twice and none at all.
  template <class Value>
  std::vector<Value> some_of(const std::vector<Value>& values) {
    std::vector<Value> some;
    for (std::size_t count = pick(4); count > 0; --count) {
      some.push_back(any_of(values));
    }
    return some;
  }

  Terms some_terms() {
    Terms terms;
    for (std::size_t count = pick(3); count > 0; --count) {
      terms.insert({any_of(tag_names), any_of(tag_values)});
    }
    return terms;
  }

  std::vector<std::shared_ptr<camera>> some_cameras() {
    std::vector<std::shared_ptr<camera>> cameras;
    for (const std::uint64_t id : some_of(camera_ids)) {
      cameras.push_back(camera_of_id(id));
    }
    return cameras;
  }

  static Ids ids_in(const std::vector<std::shared_ptr<camera>>& cameras) {
    Ids ids;
    for (const std::shared_ptr<camera>& record : cameras) {
      ids.insert(record->id);
    }
    return ids;
  }

  void describe_the_site() {
    for (const std::uint64_t id : camera_ids) {
      Site_Camera& camera = site.given_camera(id);
      camera.detecting_objects(one_in(2)).detecting_motion(one_in(2));
      for (const std::string& name : tag_names) {
        if (one_in(2)) {
          camera.with_tag(name, any_of(tag_values));
        }
      }
    }
    for (const std::uint64_t id : generic_ids) {
      for (const std::string& name : tag_names) {
        if (one_in(2)) {
          site.given_generic_subscription(id).with_tag(name, any_of(tag_values));
        } else {
          site.given_generic_subscription(id);
        }
      }
    }
  }

  /// What another program left behind: subscriptions with a camera or a topic, but not both.
  void given_subscriptions_of_no_kind() {
    foreign_program().execute(
        "INSERT INTO subscription (id, name, camera_id) VALUES (6, 'no topic', 10)");
    foreign_program().execute(
        "INSERT INTO subscription (id, name, onvif_topic) VALUES (9, 'no camera', 'a')");
    model().subscriptions[6] = {"no topic", 10, std::nullopt, {}, {}};
    model().subscriptions[9] = {"no camera", std::nullopt, "a", {}, {}};
  }

  // Writes. Each is accepted exactly when the model accepts it.

  void add_a_trigger() {
    const auto added = a_trigger(any_of(trigger_ids));
    expect_answer(triggers().add(added), model().add_trigger(*added));
  }

  void rename_a_trigger() {
    auto changed = triggers().find_by_id(any_of(trigger_ids));
    if (!changed) {
      changed = a_trigger(any_of(trigger_ids));
    }
    changed->name = "renamed " + std::to_string(pick(1000));
    expect_answer(triggers().update(changed), model().update_trigger(*changed));
  }

  template <class Record>
  void hold_some_triggers(Record& record) {
    for (const std::uint64_t id : some_of(trigger_ids)) {
      // Mostly such that are stored, or nearly nothing would be accepted.
      if (model().trigger_names.count(id) == 1 || one_in(8)) {
        record.add_trigger(a_trigger(id));
      }
    }
  }

  template <class Record>
  void let_some_triggers_go(Record& record) {
    for (const std::uint64_t id : some_of(trigger_ids)) {
      record.remove_trigger(a_trigger(id));
    }
  }

  void add_a_subscription() {
    const std::uint64_t camera_id = one_in(10) ? 4711 : any_of(camera_ids);
    const auto added = a_topic_subscription(camera_id, any_of(topics), {});
    hold_some_triggers(*added);
    const bool accepted = model().may_add(*added);
    expect_answer(subscriptions().add(added), accepted);
    if (accepted) {
      EXPECT_EQ(model().subscriptions.count(added->id), 0U);
      EXPECT_TRUE(given_subscription_ids_.insert(added->id).second);
      model().add(*added);
    }
  }

  void update_a_subscription() {
    const auto all = subscriptions().get_stale({});
    const auto changed = one_in(6) && kept_ ? kept_ : any_of(all);
    hold_some_triggers(*changed);
    let_some_triggers_go(*changed);
    const Trigger_Link_Changes changes = changed->link_changes;
    const bool accepted = model().update(changed->id, changes);
    expect_answer(subscriptions().update(changed), accepted);
    kept_ = accepted ? changed : nullptr;  // also beyond a pass, and beyond the life of its record
  }

  void add_a_detection() {
    const auto added = an_eta_camera(one_in(10) ? 4711 : any_of(camera_ids), {});
    hold_some_triggers(*added);
    const bool accepted = model().may_add(*added);
    expect_answer(eta_cameras().add(added), accepted);
    if (accepted) {
      EXPECT_TRUE(given_detection_ids_.insert(added->id).second);
      model().add(*added);
    }
  }

  void update_a_detection() {
    const auto changed = eta_cameras().get_by_camera_id(any_of(camera_ids));
    if (changed) {
      hold_some_triggers(*changed);
      let_some_triggers_go(*changed);
      const Trigger_Link_Changes changes = changed->link_changes;
      const bool accepted = model().update_detection(changed->id, changes);
      expect_answer(eta_cameras().update(changed), accepted);
    }
  }

  void delete_some_triggers() {
    Ids kept;
    for (const std::uint64_t id : trigger_ids) {
      if (!one_in(4)) {
        kept.insert(id);
      }
    }
    if (one_in(10)) {
      kept.clear();
      triggers().delete_all();
    } else {
      triggers().delete_all_except(kept);
    }
    model().delete_triggers_except(kept);
  }

  void delete_stale_records() {
    subscriptions().delete_stale();
    model().delete_stale_subscriptions();
    if (one_in(2)) {
      eta_cameras().delete_stale();
      model().delete_stale_detections();
    }
  }

  void write_something() {
    switch (pick(16)) {
      case 0:
      case 1:
      case 2:
        return add_a_trigger();
      case 3:
        return rename_a_trigger();
      case 4:
      case 5:
      case 6:
      case 7:
        return add_a_subscription();
      case 8:
      case 9:
      case 10:
        return update_a_subscription();
      case 11:
      case 12:
        return add_a_detection();
      case 13:
        return update_a_detection();
      case 14:
        return delete_some_triggers();
      default:
        return delete_stale_records();
    }
  }

  // Questions.

  std::shared_ptr<trigger> some_trigger() {
    return one_in(5) ? nullptr : a_trigger(one_in(10) ? 4711 : any_of(trigger_ids));
  }

  void compare(const Subscription_Query& query) {
    const auto found = texts_of(subscriptions().Get_Matching_Subscriptions(query));
    ASSERT_EQ(found, model().answer(query))
        << "holding " << static_cast<int>(query.trigger_match) << ", kind "
        << static_cast<int>(query.kind) << ", outside "
        << static_cast<int>(query.topics_and_cameras) << ", tags "
        << static_cast<int>(query.tags_match) << ", trigger "
        << (query.trigger ? std::to_string(query.trigger->id) : "none") << ", "
        << query.topics.size() << " topics, " << query.cameras.size() << " cameras, "
        << query.tags.size() << " terms";
    answered_ += found.empty() ? 0 : 1;
  }

  void compare_subscriptions() {
    Subscription_Query query;
    for (const auto match :
         {Subscription_Query::Trigger_Match::holding, Subscription_Query::Trigger_Match::lacking}) {
      for (const auto kind : {Subscription_Query::Kind::any, Subscription_Query::Kind::topic,
                              Subscription_Query::Kind::generic}) {
        for (const auto place : {Subscription_Query::Topics_And_Cameras::matching,
                                 Subscription_Query::Topics_And_Cameras::outside}) {
          for (const auto tags :
               {Subscription_Query::Tags::matching, Subscription_Query::Tags::not_matching}) {
            compare({some_trigger(), some_of(topics), some_cameras(), some_terms(), match, kind,
                     place, tags});
          }
        }
      }
    }
  }

  void compare_detections() {
    for (const auto match :
         {Detection_Query::Cameras::matching, Detection_Query::Cameras::outside}) {
      const Detection_Query query{some_trigger(), some_cameras(), match};
      ASSERT_EQ(texts_of(eta_cameras().get(query)), model().answer(query));
    }
    ASSERT_EQ(texts_of(eta_cameras().get_all()), model().answer(Detection_Query()));
    const std::uint64_t camera_id = any_of(camera_ids);
    Detection_Query of_camera;
    of_camera.cameras = {camera_of_id(camera_id)};
    const auto record = eta_cameras().get_by_camera_id(camera_id);
    ASSERT_EQ(record ? std::vector<std::string>{text_of(record)} : std::vector<std::string>{},
              model().answer(of_camera));
  }

  void compare_the_rest() {
    const std::vector<std::uint64_t> live = some_of(trigger_ids);
    const Ids live_ids(live.begin(), live.end());
    ASSERT_EQ(texts_of(subscriptions().get_stale(live_ids)), model().stale(live_ids));

    const std::uint64_t trigger_id = any_of(trigger_ids);
    const auto found = triggers().find_by_id(trigger_id);
    const auto expected = model().trigger_names.find(trigger_id);
    ASSERT_EQ(found ? found->name : "none",
              expected == model().trigger_names.end() ? "none" : expected->second);

    const Terms terms = some_terms();
    ASSERT_EQ(ids_of(cameras().get_cameras_matching_tags(terms)), model().cameras_matching(terms));
    const std::string& topic = any_of(topics);
    const auto candidates = some_cameras();
    ASSERT_EQ(ids_of(cameras().get_cameras_needing_subscription(topic, candidates)),
              model().cameras_needing(topic, ids_in(candidates)));
    ASSERT_EQ(ids_of(cameras().get_object_detection_cameras(candidates)),
              model().object_detection_cameras(ids_in(candidates)));
    ASSERT_EQ(ids_of(cameras().get_motion_detection_cameras(candidates)),
              model().motion_detection_cameras(ids_in(candidates)));
  }

  void compare_everything() {
    compare_subscriptions();
    compare_detections();
    compare_the_rest();
  }

  Plain_Model& model() {
    if (!model_) {
      model_ = std::make_unique<Plain_Model>(site);
    }
    return *model_;
  }

  /// Compares the answer to a write with the model's, and counts it.
  void expect_answer(bool answer, bool expected) {
    EXPECT_EQ(answer, expected);
    ++(expected ? accepted_ : refused_);
  }

  int answered_ = 0;  ///< queries that found something
  int accepted_ = 0;
  int refused_ = 0;

 private:
  std::unique_ptr<Plain_Model> model_;
  Ids given_subscription_ids_;
  Ids given_detection_ids_;
  std::shared_ptr<metadata_event_subscription> kept_;
};

INSTANTIATE_TEST_SUITE_P(Engines, Repositories_Against_Model, testing::ValuesIn(contracts()),
                         name_of_contract);

TEST_P(Repositories_Against_Model, answer_every_combination_of_questions_as_a_plain_model_does) {
  given_subscriptions_of_no_kind();
  for (int round = 0; round < 250; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    for (std::size_t writes = pick(6); writes > 0; --writes) {
      write_something();
    }
    compare_everything();
    if (one_in(12)) {
      reopen();
      compare_everything();
    }
    ASSERT_FALSE(HasFailure());
  }
  // Or the site was too small to say anything.
  EXPECT_GT(answered_, 1000);
  EXPECT_GT(accepted_, 200);
  EXPECT_GT(refused_, 100);
}

}  // namespace
}  // namespace kuv::test
