// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "system/passes/failing_log.h"
#include "system/passes/random_life.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::test {
namespace {

using Status = Pass_Outcome::Status;
using Ids = std::set<std::uint64_t>;
using Id_List = std::vector<std::uint64_t>;
using Snags = Pass_Model::Snags;

/// What cuts a pass short: no child of the standard exception class.
struct Cut_Short {};

/// Notes whom it is asked for. Some cameras do not answer; at one call a pass may be cut short.
class Random_Cameras : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t camera_id) override {
    if (asked_for.size() == calls_before_the_cut) {
      throw Cut_Short();
    }
    asked_for.push_back(camera_id);
    if (silent.count(camera_id) == 1) {
      throw std::runtime_error("the camera does not answer");
    }
  }

  void expect_a_pass() {
    asked_for.clear();
    calls_before_the_cut.reset();
  }

  Id_List asked_for;
  Ids silent;
  std::optional<std::size_t> calls_before_the_cut;
};

/// Notes which cameras were asked for by the time that it is called: by the trigger manager alone.
class Pusher_Behind_The_Cameras : public Trigger_Notification_Pusher {
 public:
  explicit Pusher_Behind_The_Cameras(const Random_Cameras& cameras) : cameras_(cameras) {}

  void stop() override {}
  void apply_trigger_state(Trigger_Config_State) override {
    asked_for_before = cameras_.asked_for;
    if (failing) {
      throw std::runtime_error("the queue is full");
    }
  }

  std::optional<Id_List> asked_for_before;
  bool failing = false;

 private:
  const Random_Cameras& cameras_;
};

/// How often it came to what the histories are about.
struct Met {
  int cut_short = 0;
  int lost = 0;
  int failed_triggers = 0;
  int asked_in_vain = 0;  ///< for a camera to which nothing had happened in the end
  int left_over = 0;
  int left_alone = 0;
};

/// Passes over a random site, told apart by how they end.
class Random_History {
 public:
  Random_History(const Database_Engine& engine, std::uint64_t seed, Met& met)
      : met_(met),
        server_(engine),
        random_(server_.site, Server_Around::server_id, seed),
        model_(server_.site, Server_Around::server_id, no_leaves_),
        cameras_(std::make_shared<Random_Cameras>()),
        pusher_(std::make_shared<Pusher_Behind_The_Cameras>(*cameras_)) {
    model_.pass({}, {});
  }

  void live(int passes) {
    test::live(
        passes, random_, server_,
        [this] {
          host_.reset();
          server_.close();
        },
        [this] { next_pass(); });
  }

 private:
  struct Given {
    std::vector<Trigger_Spec> triggers;
    std::vector<Mapping_Spec> mapping;
  };

  void next_pass() {
    cameras_->expect_a_pass();
    cameras_->silent = random_.some_of(Random_Site::camera_ids, 6);
    pusher_->asked_for_before.reset();
    pusher_->failing = false;
    const Snags snags = some_snags();
    const Failing_Log log(lines_at(snags));
    Given given{some_triggers(), random_.one_in(3) ? random_.some_mapping() : stored_.mapping};
    switch (random_.pick(8)) {
      case 0:
        return be_cut_short(given, snags);
      case 1:
        return be_lost(given, snags);
      case 2:
        return fail_behind_the_commit(given, snags);
      case 3:
        return be_rejected(given);
      case 4:
        model_.pass(stored_.triggers, stored_.mapping, snags);
        return expect_done(host().refresh());
      default:
        model_.pass(given.triggers, given.mapping, snags);
        stored_ = given;
        return expect_done(apply(given));
    }
  }

  /// Mostly those there were, one trigger more or less, or another in its place.
  std::vector<Trigger_Spec> some_triggers() {
    if (random_.one_in(4)) {
      return random_.some_triggers();
    }
    std::vector<Trigger_Spec> triggers = stored_.triggers;
    const std::uint64_t id = random_.any_of(Random_Site::trigger_ids);
    const auto place = std::find_if(triggers.begin(), triggers.end(),
                                    [id](const Trigger_Spec& trigger) { return trigger.id == id; });
    if (place != triggers.end()) {
      triggers.erase(place);
    }
    if (place == triggers.end() || random_.one_in(2)) {
      triggers.push_back(some_trigger(id));
    }
    return triggers;
  }

  /// Mostly one that listens to something.
  Trigger_Spec some_trigger(std::uint64_t id) {
    Trigger_Spec trigger = random_.some_trigger(id);
    if (!random_.one_in(4)) {
      trigger.server_filter.clear();
      trigger.camera_filter.clear();
      trigger.topics.insert("a");
    }
    return trigger;
  }

  Snags some_snags() {
    Snags snags;
    for (std::size_t count = random_.pick(4); count > 0; --count) {
      snags.emplace(random_.any_of(Random_Site::trigger_ids),
                    random_.any_of(Random_Site::camera_ids));
    }
    return snags;
  }

  Trigger_Host& host() {
    if (!host_) {
      host_.emplace(server_.database(), Server_Around::server_id, Host_Services{cameras_, pusher_});
    }
    return *host_;
  }

  Pass_Outcome apply(const Given& given) {
    const Json_Document mapping(document_of(given.mapping).toStyledString());
    return host().apply(Json_Document(document_of(given.triggers).toStyledString()), &mapping);
  }

  void expect_done(const Pass_Outcome& outcome) {
    EXPECT_EQ(outcome.status, Status::done);
    std::vector<std::string> errors;
    for (const std::uint64_t id : model_.failed()) {
      errors.push_back(fmt::format("Trigger {}: Failed to process config (the log is full).", id));
    }
    std::vector<std::string> told;
    for (const auto& error : outcome.errors) {
      told.push_back(error.message);
    }
    EXPECT_EQ(told, errors);
    expect_whom_it_asked_for(outcome);
  }

  void fail_behind_the_commit(const Given& given, const Snags& snags) {
    pusher_->failing = true;
    model_.pass(given.triggers, given.mapping, snags);
    const Pass_Outcome outcome = apply(given);
    EXPECT_EQ(outcome.status, Status::failed);
    expect_whom_it_asked_for(outcome);
  }

  void expect_whom_it_asked_for(const Pass_Outcome& outcome) {
    EXPECT_EQ(pusher_->asked_for_before, model_.reconciled());
    EXPECT_EQ(cameras_->asked_for, whom_to_ask_for());
    met_.left_over += static_cast<int>(cameras_->asked_for.size() - model_.reconciled().size());
    note_changed_cameras();
    Ids reconciled;
    for (const std::uint64_t id : cameras_->asked_for) {
      if (cameras_->silent.count(id) == 0) {
        reconciled.insert(id);
        pending_.erase(id);
      }
    }
    EXPECT_EQ(outcome.reconciled, reconciled);
    expect_what_is_stored();
  }

  /// The cameras of the pass, and behind them those that earlier ones left over.
  Id_List whom_to_ask_for() const {
    Id_List ids = model_.reconciled();
    for (const std::uint64_t id : pending_) {
      if (std::count(ids.begin(), ids.end(), id) == 0) {
        ids.push_back(id);
      }
    }
    return ids;
  }

  void note_changed_cameras() {
    pending_.insert(model_.changed_cameras().begin(), model_.changed_cameras().end());
    met_.failed_triggers += static_cast<int>(model_.failed().size());
    met_.asked_in_vain +=
        static_cast<int>(model_.reconciled().size() - model_.changed_cameras().size());
    for (const std::uint64_t id : model_.cameras_left_alone()) {
      const Id_List& asked_for = cameras_->asked_for;
      met_.left_alone += static_cast<int>(std::count(asked_for.begin(), asked_for.end(), id) == 0);
    }
  }

  void expect_what_is_stored() {
    EXPECT_EQ(stored_pending(), pending_);
    EXPECT_EQ(server_.topic_subscriptions(), model_.topic_subscriptions());
    EXPECT_EQ(server_.generic_subscriptions(), model_.generic_subscriptions());
  }

  void be_cut_short(const Given& given, const Snags& snags) {
    model_.pass(given.triggers, given.mapping, snags);
    const Id_List ids = whom_to_ask_for();
    const std::size_t calls = random_.pick(6);
    if (calls >= ids.size()) {
      stored_ = given;
      return expect_done(apply(given));
    }
    cameras_->calls_before_the_cut = calls;
    EXPECT_THROW(apply(given), Cut_Short);
    EXPECT_EQ(cameras_->asked_for, Id_List(ids.begin(), ids.begin() + std::ptrdiff_t(calls)));
    note_changed_cameras();
    ++met_.cut_short;
    expect_what_is_stored();
  }

  /// A pass whose commit fails keeps nothing and asks for nobody.
  void be_lost(const Given& given, const Snags& snags) {
    Pass_Model in_vain = model_;
    in_vain.pass(given.triggers, given.mapping, snags);
    const Ids& changed = in_vain.changed_cameras();
    if (std::includes(pending_.begin(), pending_.end(), changed.begin(), changed.end())) {
      return;  // there is no row to fail at
    }
    const bool on_sqlite = server_.engine().name == "sqlite";
    Foreign_Program& program = server_.foreign_program();
    host();
    if (on_sqlite) {
      program.execute(
          "CREATE TRIGGER trouble BEFORE INSERT ON pending_camera "
          "BEGIN SELECT RAISE(ABORT, 'trouble'); END");
    } else {
      program.execute("ALTER TABLE pending_camera ADD CONSTRAINT trouble CHECK (false) NOT VALID");
    }
    const Pass_Outcome outcome = apply(given);
    program.execute(on_sqlite ? "DROP TRIGGER trouble"
                              : "ALTER TABLE pending_camera DROP CONSTRAINT trouble");
    ++met_.lost;
    EXPECT_EQ(outcome.status, Status::failed);
    EXPECT_EQ(cameras_->asked_for, Id_List());
    expect_what_is_stored();
  }

  void be_rejected(Given given) {
    given.triggers.push_back(random_.some_trigger(5));
    given.triggers.back().motion = true;
    given.triggers.push_back(given.triggers.back());
    EXPECT_EQ(apply(given).status, Status::rejected);
    EXPECT_EQ(cameras_->asked_for, Id_List());
    expect_what_is_stored();
  }

  Ids stored_pending() {
    Ids ids;
    for (const Row& row : server_.foreign_program().query("SELECT camera_id FROM pending_camera")) {
      ids.insert(static_cast<std::uint64_t>(std::stoll(row.at(0).value())));
    }
    return ids;
  }

  Met& met_;
  Server_Around server_;
  Random_Site random_;
  std::map<std::string, std::vector<std::string>> no_leaves_;
  Pass_Model model_;
  std::shared_ptr<Random_Cameras> cameras_;
  std::shared_ptr<Pusher_Behind_The_Cameras> pusher_;
  std::optional<Trigger_Host> host_;
  Given stored_;  ///< the documents
  Ids pending_;
};

// Under the sanitizers a history takes eight times as long.
#ifdef VEMORA_SANITIZED
constexpr std::uint64_t histories_on_sqlite = 40;
constexpr std::uint64_t histories_on_postgresql = 20;
#else
constexpr std::uint64_t histories_on_sqlite = 200;
constexpr std::uint64_t histories_on_postgresql = 50;
#endif

class Reconciled_Cameras : public testing::TestWithParam<Database_Engine> {
 protected:
  /// PostgreSQL takes longer for each.
  static std::uint64_t histories() {
    return length_of_campaign(
        "HISTORIES", GetParam().name == "sqlite" ? histories_on_sqlite : histories_on_postgresql);
  }

  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Reconciled_Cameras, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Reconciled_Cameras, are_those_asked_for_and_those_that_passes_cut_short_had_changed) {
  Met met;
  for (std::uint64_t seed = 1; seed <= histories() && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random_History(GetParam(), seed, met).live(8);
  }
  if (HasFailure()) {
    return;
  }
  for (const int times : {met.cut_short, met.lost, met.failed_triggers, met.asked_in_vain,
                          met.left_over, met.left_alone}) {
    EXPECT_GT(times, 0);
  }
  std::cout << fmt::format(
      "passes cut short: {}, lost: {}; triggers that failed: {}; cameras asked for in vain: {}, "
      "left over: {}, left alone: {}\n",
      met.cut_short, met.lost, met.failed_triggers, met.asked_in_vain, met.left_over,
      met.left_alone);
}

}  // namespace
}  // namespace kuv::test
