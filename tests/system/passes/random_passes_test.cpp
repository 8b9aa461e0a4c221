#include <random>
#include <utility>

#include "system/passes/pass_model.h"
#include "system/passes/whole_pass_test.h"

namespace kuv::test {
namespace {

const std::vector<std::uint64_t> camera_ids{0, 10, 11, first_unsigned_id, largest_id};
const std::vector<std::uint64_t> trigger_ids{0, 3, 7, 8, first_unsigned_id, largest_id};
const std::vector<std::uint64_t> subscription_ids{1, 2, 100, largest_id};
const std::vector<std::uint64_t> schedule_ids{1, 2, largest_id};
const std::vector<std::string> topics{"a", "a.b", "tns1:Device/Trigger/DigitalInput"};
const std::vector<std::string> tag_names{"door", "site"};
const std::vector<std::string> tag_values{"north", "south"};
const std::vector<std::string> object_types{"car", "person", "vehicle", "anything"};

/// A site at random, and documents at random over it; the same ones for the same seed.
class Random_Life {
 public:
  Random_Life(const Database_Engine& engine, std::uint64_t seed)
      : server_(engine), random_(seed), model_(server_.site, server_.server_id, leaves_) {
    leaves_ = {{"vehicle", {"car", "truck"}}, {"anything", {"car", "person", "truck"}}};
    server_.resolver->leaves = leaves_;
    describe_the_site();
  }

  void live(int passes) {
    for (int number = 0; number < passes && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE("pass " + std::to_string(number));
      if (one_in(3)) {
        change_the_site();
        server_.site.store_in(server_.database());
      }
      if (one_in(6)) {
        server_.restart();
      }
      next_pass();
    }
  }

 private:
  std::size_t pick(std::size_t count) { return static_cast<std::size_t>(random_() % count); }
  bool one_in(std::size_t count) { return pick(count) == 0; }

  template <class Value>
  const Value& any_of(const std::vector<Value>& values) {
    return values[pick(values.size())];
  }

  /// Each of them or not.
  template <class Value>
  std::set<Value> some_of(const std::vector<Value>& values, std::size_t one_in_how_many) {
    std::set<Value> some;
    for (const Value& value : values) {
      if (one_in(one_in_how_many)) {
        some.insert(value);
      }
    }
    return some;
  }

  std::optional<std::string> some_value() {
    return one_in(3) ? std::nullopt : std::make_optional(any_of(tag_values));
  }

  Tag_Filter_Spec some_filter() {
    Tag_Filter_Spec filter;
    for (std::size_t count = pick(3); count > 0; --count) {
      filter.insert({any_of(tag_names), some_value()});
    }
    return filter;
  }

  Tag_Map some_tags() {
    Tag_Map tags;
    for (const std::string& name : some_of(tag_names, 2)) {
      tags[name].value = some_value();
    }
    return tags;
  }

  void describe_camera(Site_Camera& camera) {
    camera.tags = some_tags();
    camera.topics = some_of(topics, 2);
    camera.detecting_objects(one_in(2)).detecting_motion(one_in(2));
  }

  void describe_the_site() {
    Site_Builder& site = server_.site;
    site.given_server(server_.server_id).tags = some_tags();
    for (const std::uint64_t id : camera_ids) {
      describe_camera(site.given_camera(id));
    }
    for (const std::uint64_t id : subscription_ids) {
      site.given_generic_subscription(id).tags = some_tags();
    }
    for (const std::uint64_t id : schedule_ids) {
      site.given_schedule(id, !one_in(4)).name = "schedule";
    }
  }

  void change_the_site() {
    Site_Builder& site = server_.site;
    describe_camera(site.given_camera(any_of(camera_ids)));
    site.given_generic_subscription(any_of(subscription_ids)).tags = some_tags();
    site.given_schedule(any_of(schedule_ids), !one_in(4));
    if (one_in(3)) {
      site.given_server(server_.server_id).tags = some_tags();
    }
  }

  /// Mostly of schedules that there are.
  std::set<std::uint64_t> some_schedules() {
    std::set<std::uint64_t> ids = some_of(schedule_ids, 4);
    if (one_in(12)) {
      ids.insert(4711);
    }
    return ids;
  }

  Trigger_Spec some_trigger(std::uint64_t id) {
    Trigger_Spec trigger;
    trigger.id = id;
    trigger.name = one_in(2) ? "one" : "another";
    if (one_in(3)) {
      trigger.server_filter = some_filter();
    }
    trigger.camera_filter = some_filter();
    trigger.event_filter = some_filter();
    trigger.topics = one_in(3) ? std::set<std::string>() : some_of(topics, 2);
    for (const std::string& type : some_of(object_types, 4)) {
      trigger.object_types[type] = one_in(2);
    }
    trigger.generic_events = one_in(2);
    trigger.motion = one_in(3);
    trigger.audio = one_in(5);
    trigger.external = one_in(5);
    if (trigger.topics.empty() && trigger.object_types.empty()) {
      trigger.external = true;  // a trigger has sources, be they none of ours
    }
    trigger.any_time = one_in(4);
    if (one_in(2)) {
      trigger.schedule_ids = some_schedules();
    }
    return trigger;
  }

  std::vector<Trigger_Spec> some_triggers() {
    std::vector<Trigger_Spec> triggers;
    for (const std::uint64_t id : some_of(trigger_ids, 2)) {
      triggers.push_back(some_trigger(id));
    }
    for (std::size_t place = 1; place < triggers.size(); ++place) {
      std::swap(triggers[place], triggers[pick(place + 1)]);
    }
    return triggers;
  }

  std::vector<Mapping_Spec> some_mapping() {
    std::vector<Mapping_Spec> mapping;
    for (std::size_t count = pick(3); count > 0; --count) {
      Mapping_Spec entry{some_schedules(), some_of(trigger_ids, 3)};
      entry.trigger_ids.insert(any_of(trigger_ids));
      mapping.push_back(entry);
    }
    return mapping;
  }

  void next_pass() {
    switch (pick(8)) {
      case 0:
        return refresh();
      case 1:
        return change_the_mapping();
      case 2:
        return fail_at_the_pusher();
      case 3:
        return hand_over_nonsense();
      default:
        return change_the_config();
    }
  }

  void refresh() {
    model_.pass(triggers_, mapping_);
    expect(server_.refresh());
    expect_nothing_more_to_do();
  }

  void change_the_config() {
    triggers_ = some_triggers();
    model_.pass(triggers_, mapping_);
    expect(server_.update_config(document_of(triggers_)));
    if (one_in(4)) {
      expect_nothing_more_to_do();
    }
  }

  void change_the_mapping() {
    mapping_ = some_mapping();
    model_.pass(triggers_, mapping_);
    expect(server_.update_mapping(document_of(mapping_)));
  }

  void fail_at_the_pusher() {
    const std::vector<Trigger_Spec> in_vain = some_triggers();
    model_.pass(in_vain, mapping_);
    server_.pusher->failing = true;
    const Outcome outcome = server_.update_config(document_of(in_vain));
    server_.pusher->failing = false;
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.errors,
              (std::vector<std::string>{"1: Failed to update trigger config: the queue is full"}));
    expect_site(outcome);
    // The documents are still the old ones.
    refresh();
  }

  void hand_over_nonsense() {
    const auto before = server_.stored();
    Json::Value twice = document_of(some_triggers());
    Trigger_Spec trigger = some_trigger(5);
    trigger.motion = true;
    const Json::Value same = document_of(std::vector<Trigger_Spec>{trigger})["triggers"][0];
    twice["triggers"].append(same);
    twice["triggers"].append(same);
    const Outcome outcome = server_.update_config(twice);
    EXPECT_FALSE(outcome.success);
    EXPECT_EQ(outcome.errors,
              (std::vector<std::string>{"0: Failed to parse trigger config: All \"id\" values "
                                        "must be unique, 5 is duplicated."}));
    EXPECT_EQ(server_.stored(), before);
  }

  void expect(const Outcome& outcome) {
    EXPECT_TRUE(outcome.success) << outcome.exception;
    EXPECT_EQ(outcome.errors, std::vector<std::string>());
    EXPECT_EQ(lines_of(outcome.state), model_.state());
    expect_site(outcome);
  }

  void expect_site(const Outcome& outcome) {
    EXPECT_EQ(outcome.reconciled, model_.reconciled());
    EXPECT_EQ(server_.topic_subscriptions(), model_.topic_subscriptions());
    EXPECT_EQ(server_.generic_subscriptions(), model_.generic_subscriptions());
    EXPECT_EQ(server_.detections(), model_.detections());
    EXPECT_EQ(server_.stored_triggers(), model_.stored_triggers());
    for (const std::uint64_t camera_id : model_.left_pending()) {
      pending_.insert(camera_id);
    }
    for (const std::uint64_t camera_id : outcome.reconciled) {
      pending_.erase(camera_id);
    }
    EXPECT_EQ(outcome.pending, pending_);
  }

  void expect_nothing_more_to_do() {
    const auto before = server_.stored();
    const Outcome again = server_.refresh();
    EXPECT_TRUE(is_empty(again.changes));
    EXPECT_EQ(again.reconciled, std::vector<std::uint64_t>());
    EXPECT_EQ(lines_of(again.state), model_.state());
    EXPECT_EQ(server_.stored(), before);
  }

  Server_Around server_;
  std::mt19937_64 random_;
  std::map<std::string, std::vector<std::string>> leaves_;
  Pass_Model model_;
  std::vector<Trigger_Spec> triggers_;
  std::vector<Mapping_Spec> mapping_;
  std::set<std::uint64_t> pending_;
};

class Random_Passes : public testing::TestWithParam<Database_Engine> {
 protected:
  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Random_Passes, testing::ValuesIn(database_engines()),
                         name_of_engine);

// Under the sanitizers a life takes eight times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr std::uint64_t lives = 60;
#else
constexpr std::uint64_t lives = 300;
#endif

TEST_P(Random_Passes, lead_where_the_documents_say) {
  for (std::uint64_t seed = 1; seed <= lives && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random_Life(GetParam(), seed).live(6);
  }
}

}  // namespace
}  // namespace kuv::test
