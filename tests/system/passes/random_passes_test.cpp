// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "system/passes/pass_model.h"
#include "system/passes/random_life.h"

namespace kuv::test {
namespace {

/// One pass after the other over a random site.
class Random_Life {
 public:
  Random_Life(const Database_Engine& engine, std::uint64_t seed)
      : server_(engine),
        random_(server_.site, server_.server_id, seed),
        model_(server_.site, server_.server_id, leaves_) {
    leaves_ = {{"vehicle", {"car", "truck"}}, {"anything", {"car", "person", "truck"}}};
    server_.resolver->leaves = leaves_;
  }

  void live(int passes) {
    test::live(
        passes, random_, server_, [this] { server_.restart(); },
        [this] {
          if (random_.one_in(6)) {
            leave_behind_a_topic_without_a_camera();
          }
          next_pass();
        });
  }

 private:
  /// As no pass does, but another program may.
  void leave_behind_a_topic_without_a_camera() {
    const std::uint64_t id = next_id_++;
    const std::string topic = random_.one_in(2) ? "a" : "a.b";
    server_.foreign_program().execute("INSERT INTO subscription (id, name, onvif_topic) VALUES (" +
                                      std::to_string(id) + ", 'half', '" + topic + "')");
    for (const std::uint64_t trigger_id : model_.stored_ids()) {
      server_.foreign_program().execute(
          "INSERT INTO subscription_trigger VALUES (" + std::to_string(id) + ", " +
          std::to_string(static_cast<std::int64_t>(trigger_id)) + ")");
    }
    model_.leave_behind_a_topic_without_a_camera(id, topic);
  }

  void next_pass() {
    switch (random_.pick(8)) {
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
    triggers_ = random_.some_triggers();
    model_.pass(triggers_, mapping_);
    expect(server_.update_config(document_of(triggers_)));
    if (random_.one_in(4)) {
      expect_nothing_more_to_do();
    }
  }

  void change_the_mapping() {
    mapping_ = random_.some_mapping();
    model_.pass(triggers_, mapping_);
    expect(server_.update_mapping(document_of(mapping_)));
  }

  void fail_at_the_pusher() {
    const std::vector<Trigger_Spec> in_vain = random_.some_triggers();
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
    Json::Value twice = document_of(random_.some_triggers());
    Trigger_Spec trigger = random_.some_trigger(5);
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
    EXPECT_EQ(outcome.pending, std::set<std::uint64_t>());
  }

  void expect_nothing_more_to_do() {
    const auto before = server_.stored();
    const Outcome again = server_.refresh();
    EXPECT_TRUE(again.changes.empty());
    EXPECT_EQ(again.reconciled, std::vector<std::uint64_t>());
    EXPECT_EQ(lines_of(again.state), model_.state());
    EXPECT_EQ(server_.stored(), before);
  }

  Server_Around server_;
  Random_Site random_;
  std::map<std::string, std::vector<std::string>> leaves_;
  Pass_Model model_;
  std::vector<Trigger_Spec> triggers_;
  std::vector<Mapping_Spec> mapping_;
  std::uint64_t next_id_ = 5000;
};

class Random_Passes : public testing::TestWithParam<Database_Engine> {
 protected:
  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Random_Passes, testing::ValuesIn(database_engines()),
                         name_of_engine);

// Under the sanitizers a life takes eight times as long.
#ifdef VEMORA_SANITIZED
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
