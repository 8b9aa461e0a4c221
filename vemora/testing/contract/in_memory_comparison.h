// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/testing/builders/random_draws.h"
#include "vemora/testing/contract/repository_contract_test.h"
#include "vemora/testing/in_memory/repository.h"

namespace kuv::test {

/// A small site, written to and asked at random, always the same way. The in-memory repository is
/// told and asked the same, and every answer is compared.
class Repositories_Against_Model : public Repository_Contract_Test, protected Random_Draws {
 protected:
  using Subscription_Query =
      Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;
  using Detection_Query = ETA_Camera_Repository::Get_Params;
  using Id_Set = std::set<std::uint64_t>;
  using Terms = std::set<ODB_Utils::Tag_Search_Term>;

  const Ids camera_ids{0, 1, 2, 10, largest_signed_id, first_unsigned_id, largest_id};
  const Ids trigger_ids{0, 3, 7, 8, largest_signed_id, first_unsigned_id, 11, 12, largest_id};
  const Ids generic_ids{2, 5, 100, first_unsigned_id, largest_id};
  const Texts topics{"a", "b", "a.b", "tns1:Device/Trigger/DigitalInput",
                     "tns1:RuleEngine/CellMotionDetector/Motion//."};
  const Texts tag_names{"door", "site"};
  const std::vector<std::optional<std::string>> tag_values{std::nullopt, "", "north", "south"};

  Repositories_Against_Model() : Random_Draws(20240229) {
    describe_the_site();
    store(site, *tables_);
  }

  /// A record of the implementation, and the same one of the model.
  template <class Record>
  struct Both {
    std::shared_ptr<Record> real;
    std::shared_ptr<Record> model;
  };

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
      const std::string& name = any_of(tag_names);
      terms.insert({name, any_of(tag_values)});
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

  void describe_the_site() {
    for (const std::uint64_t id : camera_ids) {
      Site_Camera& camera = site.given_camera(id);
      camera.detecting_objects(one_in(2));
      camera.detecting_motion(one_in(2));
      for (const std::string& name : tag_names) {
        if (one_in(2)) {
          camera.with_tag(name, any_of(tag_values));
        }
      }
    }
    for (const std::uint64_t id : generic_ids) {
      Site_Subscription& subscription = site.given_generic_subscription(id);
      for (const std::string& name : tag_names) {
        if (one_in(2)) {
          subscription.with_tag(name, any_of(tag_values));
        }
      }
    }
  }

  /// What another program left behind, where the implementation has a way to store it.
  void given_subscriptions_of_no_kind() {
    for (const Half_Filled_Subscription& planted :
         {Half_Filled_Subscription{6, "no topic", 10, std::nullopt},
          Half_Filled_Subscription{9, "no camera", std::nullopt, "a"}}) {
      if (reopen() && site_under_test().plant(planted)) {
        In_Memory_Tables::Subscription& row = tables_->subscriptions[planted.id];
        row.name = planted.name;
        row.camera_id = planted.camera_id;
        row.onvif_topic = planted.onvif_topic;
      }
    }
  }

  // Writes. Each is accepted exactly when the model accepts it.

  void add_a_trigger() {
    const auto added = a_trigger(any_of(trigger_ids));
    expect_answer(triggers().add(added), model().triggers().add(added));
  }

  void rename_a_trigger() {
    auto changed = triggers().find_by_id(any_of(trigger_ids));
    if (!changed) {
      changed = a_trigger(any_of(trigger_ids));
    }
    changed->name = "renamed " + std::to_string(pick(1000));
    expect_answer(triggers().update(changed), model().triggers().update(changed));
  }

  template <class Record>
  void hold_some_triggers(const Both<Record>& record) {
    for (const std::uint64_t id : some_of(trigger_ids)) {
      // Mostly such that are stored, or nearly nothing would be accepted.
      if (tables_->triggers.count(id) == 1 || one_in(8)) {
        record.real->add_trigger(a_trigger(id));
        record.model->add_trigger(a_trigger(id));
      }
    }
  }

  template <class Record>
  void let_some_triggers_go(const Both<Record>& record) {
    for (const std::uint64_t id : some_of(trigger_ids)) {
      record.real->remove_trigger(a_trigger(id));
      record.model->remove_trigger(a_trigger(id));
    }
  }

  /// Adds both; the model takes the id that the implementation gave.
  template <class Real, class Model, class Record>
  void add(Real& real, Model& model, const Both<Record>& added, Id_Set& given_ids) {
    const bool is_accepted = real.add(added.real);
    if (is_accepted) {
      EXPECT_TRUE(given_ids.insert(added.real->id).second) << "a second " << added.real->id;
      tables_->next_id = added.real->id;
    }
    const bool is_expected = model.add(added.model);
    expect_answer(is_accepted, is_expected);
    if (is_expected) {
      EXPECT_EQ(added.real->id, added.model->id) << "or the id is taken";
    }
  }

  void add_a_subscription() {
    const std::uint64_t camera_id = one_in(10) ? 4711 : any_of(camera_ids);
    const std::string& topic = any_of(topics);
    const Both<metadata_event_subscription> added{a_topic_subscription(camera_id, topic, {}),
                                                  a_topic_subscription(camera_id, topic, {})};
    hold_some_triggers(added);
    add(subscriptions(), model().metadata_event_subscriptions(), added, stored_subscription_ids_);
  }

  Both<metadata_event_subscription> any_subscription() {
    const auto all = subscriptions().get_stale({});
    const auto all_of_model = model().metadata_event_subscriptions().get_stale({});
    if (ids_of(all) != ids_of(all_of_model)) {
      throw std::logic_error("the model has other subscriptions");
    }
    const std::size_t place = pick(all.size());
    return {all[place], all_of_model[place]};
  }

  void update_a_subscription() {
    const auto any = any_subscription();
    const auto changed = one_in(6) && kept_.real ? kept_ : any;
    hold_some_triggers(changed);
    let_some_triggers_go(changed);
    const bool is_accepted = subscriptions().update(changed.real);
    expect_answer(is_accepted, model().metadata_event_subscriptions().update(changed.model));
    // Also beyond a pass, and beyond the life of its record.
    kept_ = is_accepted ? changed : Both<metadata_event_subscription>();
  }

  void add_a_detection() {
    const std::uint64_t camera_id = one_in(10) ? 4711 : any_of(camera_ids);
    const Both<eta_camera> added{an_eta_camera(camera_id, {}), an_eta_camera(camera_id, {})};
    hold_some_triggers(added);
    add(eta_cameras(), model().eta_cameras(), added, stored_detection_ids_);
  }

  void update_a_detection() {
    const std::uint64_t camera_id = any_of(camera_ids);
    const Both<eta_camera> changed{eta_cameras().get_by_camera_id(camera_id),
                                   model().eta_cameras().get_by_camera_id(camera_id)};
    ASSERT_EQ(text_of(changed.real), text_of(changed.model));
    if (changed.real) {
      hold_some_triggers(changed);
      let_some_triggers_go(changed);
      expect_answer(eta_cameras().update(changed.real),
                    model().eta_cameras().update(changed.model));
    }
  }

  void delete_some_triggers() {
    Id_Set kept;
    for (const std::uint64_t id : trigger_ids) {
      if (!one_in(4)) {
        kept.insert(id);
      }
    }
    if (one_in(10)) {
      triggers().delete_all();
      model().triggers().delete_all();
    } else {
      triggers().delete_all_except(kept);
      model().triggers().delete_all_except(kept);
    }
  }

  void delete_stale_records() {
    subscriptions().delete_stale();
    model().metadata_event_subscriptions().delete_stale();
    if (one_in(2)) {
      eta_cameras().delete_stale();
      model().eta_cameras().delete_stale();
    }
    forget_deleted(tables_->subscriptions, stored_subscription_ids_);
    forget_deleted(tables_->detections, stored_detection_ids_);
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
    const Texts found = texts_of(subscriptions().Get_Matching_Subscriptions(query));
    ASSERT_EQ(found,
              texts_of(model().metadata_event_subscriptions().Get_Matching_Subscriptions(query)))
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
    using Query = Subscription_Query;
    for (const auto match : {Query::Trigger_Match::holding, Query::Trigger_Match::lacking}) {
      for (const auto kind : {Query::Kind::any, Query::Kind::topic, Query::Kind::generic}) {
        for (const auto place :
             {Query::Topics_And_Cameras::matching, Query::Topics_And_Cameras::outside}) {
          for (const auto tags : {Query::Tags::matching, Query::Tags::not_matching}) {
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
      ASSERT_EQ(texts_of(eta_cameras().get(query)), texts_of(model().eta_cameras().get(query)));
    }
    ASSERT_EQ(all_eta_cameras(), texts_of(model().eta_cameras().get_all()));
    const std::uint64_t camera_id = any_of(camera_ids);
    ASSERT_EQ(text_of(eta_cameras().get_by_camera_id(camera_id)),
              text_of(model().eta_cameras().get_by_camera_id(camera_id)));
  }

  void compare_the_rest() {
    const Ids live = some_of(trigger_ids);
    const Id_Set live_ids(live.begin(), live.end());
    ASSERT_EQ(texts_of(subscriptions().get_stale(live_ids)),
              texts_of(model().metadata_event_subscriptions().get_stale(live_ids)));

    const std::uint64_t trigger_id = any_of(trigger_ids);
    ASSERT_EQ(text_of(triggers().find_by_id(trigger_id)),
              text_of(model().triggers().find_by_id(trigger_id)));

    const Terms terms = some_terms();
    ASSERT_EQ(texts_of(cameras().get_cameras_matching_tags(terms)),
              texts_of(model().cameras().get_cameras_matching_tags(terms)));
    const std::string& topic = any_of(topics);
    const auto candidates = some_cameras();
    ASSERT_EQ(ids_of(cameras().get_cameras_needing_subscription(topic, candidates)),
              ids_of(model().cameras().get_cameras_needing_subscription(topic, candidates)));
    ASSERT_EQ(ids_of(cameras().get_object_detection_cameras(candidates)),
              ids_of(model().cameras().get_object_detection_cameras(candidates)));
    ASSERT_EQ(ids_of(cameras().get_motion_detection_cameras(candidates)),
              ids_of(model().cameras().get_motion_detection_cameras(candidates)));
  }

  void compare_everything() {
    compare_subscriptions();
    compare_detections();
    compare_the_rest();
  }

  Repository& model() { return *model_; }

  /// Compares the answer to a write with the model's, and counts it.
  void expect_answer(bool answer, bool expected) {
    EXPECT_EQ(answer, expected);
    ++(expected ? accepted_ : refused_);
  }

  int answered_ = 0;  ///< queries that found something
  int accepted_ = 0;
  int refused_ = 0;

 private:
  /// Whether an id may be given again once its record was deleted is left to the implementation.
  template <class Rows>
  static void forget_deleted(const Rows& rows, Id_Set& stored_ids) {
    for (auto id = stored_ids.begin(); id != stored_ids.end();) {
      id = rows.count(*id) == 0 ? stored_ids.erase(id) : std::next(id);
    }
  }

  const std::shared_ptr<In_Memory_Tables> tables_ = std::make_shared<In_Memory_Tables>();
  const std::shared_ptr<Repository> model_ = make_in_memory_repository(tables_);
  Id_Set stored_subscription_ids_;
  Id_Set stored_detection_ids_;
  Both<metadata_event_subscription> kept_;
};

TEST_P(Repositories_Against_Model, answer_every_combination_of_questions_as_a_plain_model_does) {
  given_subscriptions_of_no_kind();
  for (int round = 0; round < 250; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    for (std::size_t writes = pick(6); writes > 0; --writes) {
      write_something();
    }
    compare_everything();
    if (one_in(12) && reopen()) {
      compare_everything();
    }
    ASSERT_FALSE(HasFailure());
  }
  // Or the site was too small to say anything.
  EXPECT_GT(answered_, 1000);
  EXPECT_GT(accepted_, 200);
  EXPECT_GT(refused_, 100);
}

}  // namespace kuv::test
