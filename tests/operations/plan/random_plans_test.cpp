// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>

#include "system/passes/failing_log.h"
#include "system/passes/random_life.h"
#include "vemora/operations/plan/plan.h"

namespace kuv::test {
namespace {

using operations::Plan;
using operations::Planned_Action;
using operations::Planned_Ids;
using operations::Planned_Links;
using Status = Pass_Outcome::Status;

/// Services that must not be called as long as a plan is made.
struct Watched_Services {
  struct Cameras : capture::Manager {
    void reconcile_metadata_stream(std::uint64_t camera_id) override {
      EXPECT_FALSE(planning) << camera_id;
    }
    bool planning = false;
  };
  struct Pusher : Trigger_Notification_Pusher {
    void stop() override {}
    void apply_trigger_state(Trigger_Config_State) override { EXPECT_FALSE(planning); }
    bool planning = false;
  };

  void set_planning(bool planning) const {
    cameras->planning = planning;
    pusher->planning = planning;
  }

  std::shared_ptr<Cameras> cameras = std::make_shared<Cameras>();
  std::shared_ptr<Pusher> pusher = std::make_shared<Pusher>();
};

/// A record that serves triggers. One that a plan creates has no id.
struct Pictured_Record {
  std::optional<std::uint64_t> id;
  Planned_Ids triggers;
};

bool operator==(const Pictured_Record& left, const Pictured_Record& right) {
  return left.triggers == right.triggers && (!left.id || !right.id || left.id == right.id);
}

std::ostream& operator<<(std::ostream& stream, const Pictured_Record& record) {
  return stream << fmt::format("{} serves {}", record.id ? std::to_string(*record.id) : "new",
                               fmt::join(record.triggers, " "));
}

/// What a pass may change, as another program sees it.
struct Picture {
  std::map<std::uint64_t, std::string> triggers;
  std::map<std::string, Pictured_Record> subscriptions;  ///< by camera and topic, or their own id
  std::map<std::string, Pictured_Record> detection;      ///< by camera
};

std::string number_in(const std::optional<std::string>& cell) {
  return std::to_string(static_cast<std::uint64_t>(std::stoll(cell.value())));
}

std::string place_of(const std::optional<std::string>& camera_id,
                     const std::optional<std::string>& topic, const std::string& id) {
  return camera_id && topic ? fmt::format("camera {} topic {}", *camera_id, *topic)
                            : "record " + id;
}

std::map<std::string, Pictured_Record> records_in(const Rows& rows) {
  std::map<std::string, Pictured_Record> records;
  for (const Row& row : rows) {
    const std::string id = number_in(row[0]);
    const auto camera = row[1] ? std::make_optional(number_in(row[1])) : std::nullopt;
    Pictured_Record& record = records[place_of(camera, row[2], id)];
    record.id = std::stoull(id);
    if (row[3]) {
      record.triggers.push_back(std::stoull(number_in(row[3])));
    }
  }
  for (auto& [place, record] : records) {
    std::sort(record.triggers.begin(), record.triggers.end());
  }
  return records;
}

Picture picture_of(Server_Around& server) {
  Picture picture;
  for (const auto& record : read_triggers(server.database())) {
    picture.triggers[record->id] = text_of(*record);
  }
  Foreign_Program& program = server.foreign_program();
  picture.subscriptions =
      records_in(program.query("SELECT id, camera_id, onvif_topic, linked_id FROM subscription "
                               "LEFT JOIN subscription_trigger ON record_id = id"));
  picture.detection =
      records_in(program.query("SELECT id, camera_id, 'detection', linked_id FROM eta_camera "
                               "LEFT JOIN eta_camera_trigger ON record_id = id"));
  return picture;
}

// Carrying a plan out on a picture.

void carry_out(const operations::Planned_Trigger& planned, Picture& picture) {
  const auto stored = picture.triggers.find(planned.id);
  EXPECT_EQ(stored != picture.triggers.end(), planned.action != Planned_Action::creation);
  EXPECT_EQ(planned.before != nullptr, planned.action != Planned_Action::creation);
  EXPECT_EQ(planned.after != nullptr, planned.action != Planned_Action::deletion);
  if (planned.before && stored != picture.triggers.end()) {
    EXPECT_EQ(text_of(*planned.before), stored->second);
    picture.triggers.erase(stored);
  }
  if (planned.after) {
    picture.triggers[planned.id] = text_of(*planned.after);
  }
}

void carry_out(Planned_Action action, const std::string& place, std::optional<std::uint64_t> id,
               const Planned_Links& links, std::map<std::string, Pictured_Record>& records) {
  SCOPED_TRACE(place);
  const auto stored = records.find(place);
  EXPECT_EQ(stored != records.end(), action != Planned_Action::creation);
  EXPECT_EQ(id.has_value(), action != Planned_Action::creation);
  EXPECT_EQ(links.before.has_value(), action != Planned_Action::creation);
  EXPECT_EQ(links.after.has_value(), action != Planned_Action::deletion);
  if (stored != records.end()) {
    EXPECT_EQ(stored->second, (Pictured_Record{id, links.before.value_or(Planned_Ids())}));
    EXPECT_EQ(stored->second.id, id);
    records.erase(stored);
  }
  if (links.after) {
    EXPECT_NE(links.before, links.after);
    records[place] = {id, *links.after};
  }
}

Picture carried_out(const Plan& plan, Picture picture) {
  for (const auto& planned : plan.triggers) {
    carry_out(planned, picture);
  }
  for (const auto& planned : plan.subscriptions) {
    const auto camera =
        planned.camera_id ? std::make_optional(std::to_string(*planned.camera_id)) : std::nullopt;
    carry_out(planned.action,
              place_of(camera, planned.onvif_topic, std::to_string(planned.id.value_or(0))),
              planned.id, planned.triggers, picture.subscriptions);
  }
  for (const auto& planned : plan.detection) {
    carry_out(planned.action,
              place_of(std::to_string(planned.camera_id), "detection",
                       std::to_string(planned.id.value_or(0))),
              planned.id, planned.triggers, picture.detection);
  }
  return picture;
}

std::vector<std::string> messages_of(const Pass_Outcome& outcome) {
  std::vector<std::string> messages;
  for (const auto& error : outcome.errors) {
    messages.push_back(error.message);
  }
  return messages;
}

template <class Item>
std::vector<std::size_t> sizes_of(const Changes::Of<Item>& changes) {
  return {changes.added.size(), changes.updated.size(), changes.deleted.size()};
}

std::vector<std::vector<std::size_t>> sizes_of(const Changes& changes) {
  return {sizes_of(changes.triggers), sizes_of(changes.subscriptions),
          sizes_of(changes.subscription_links), sizes_of(changes.eta_cameras),
          sizes_of(changes.eta_camera_links)};
}

/// How often it came to what the lives are about.
struct Met {
  int done = 0;
  int failed = 0;
  int rejected = 0;
  int with_errors = 0;
  int without_changes = 0;
  int left_over = 0;
};

/// Plans over a random site, each carried out at once.
class Planned_Life {
 public:
  Planned_Life(const Database_Engine& engine, std::uint64_t seed, Met& met)
      : met_(met), server_(engine), random_(server_.site, Server_Around::server_id, seed) {}

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
  void next_pass() {
    if (random_.one_in(4)) {
      leave_a_camera_over();
    }
    if (random_.one_in(6)) {
      leave_links_behind();
    }
    if (!random_.one_in(5)) {
      config_ = random_config();
    }
    const Json_Document mapping(document_of(random_.some_mapping()).toStyledString());
    const Failing_Log log(random_.one_in(2) ? some_snags() : std::vector<std::string>());
    expect_plan_and_pass_alike(Json_Document(config_), random_.one_in(2) ? &mapping : nullptr);
  }

  std::string random_config() {
    std::vector<Trigger_Spec> triggers = random_.some_triggers();
    for (Trigger_Spec& trigger : triggers) {
      if (!random_.one_in(3)) {  // mostly one that listens to something
        trigger.server_filter.clear();
        trigger.camera_filter.clear();
        trigger.topics.insert("a");
      }
    }
    if (random_.one_in(8) && !triggers.empty()) {
      triggers.push_back(triggers.front());  // which no document may have
    }
    return document_of(triggers).toStyledString();
  }

  /// Single triggers fail, or the pass where that cannot be told.
  std::vector<std::string> some_snags() {
    std::vector<std::string> lines;
    for (std::size_t count = random_.pick(8); count > 0; --count) {
      const std::uint64_t id = random_.any_of(Random_Site::trigger_ids);
      lines.push_back(lines_at({{id, random_.any_of(Random_Site::camera_ids)}}).front());
      if (random_.one_in(6)) {
        lines.push_back(fmt::format("Trigger {}: Failed", id));
      }
    }
    return lines;
  }

  void leave_a_camera_over() {
    host();
    const auto id = static_cast<std::int64_t>(random_.any_of(Random_Site::camera_ids));
    server_.foreign_program().execute(
        fmt::format("INSERT INTO pending_camera VALUES ({}) ON CONFLICT DO NOTHING", id));
    ++met_.left_over;
  }

  /// To a trigger that is not there: no pass does, but another program may.
  void leave_links_behind() {
    host();
    for (const auto* const table : {"subscription", "eta_camera"}) {
      server_.foreign_program().execute(
          fmt::format("INSERT INTO {0}_trigger SELECT id, 4711 FROM {0} WHERE NOT EXISTS "
                      "(SELECT 1 FROM {0}_trigger WHERE record_id = id AND linked_id = 4711)",
                      table));
    }
  }

  Trigger_Host& host() {
    if (!host_) {
      host_.emplace(server_.database(), Server_Around::server_id,
                    Host_Services{services_.cameras, services_.pusher});
    }
    return *host_;
  }

  /// The bytes of the database, where it is a file.
  std::string bytes() {
    if (server_.engine().name != "sqlite") {
      return {};
    }
    std::string all;
    for (const auto* const suffix : {"", "-wal"}) {
      std::ifstream file(server_.location() + suffix, std::ios::binary);
      all.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return all;
  }

  Plan plan_without_a_trace(const Json_Document& config, const Json_Document* mapping) {
    host();
    const auto rows = server_.stored();
    const std::string file = bytes();
    services_.set_planning(true);
    Plan plan = operations::make_plan(host(), server_.database(), config, mapping);
    services_.set_planning(false);
    EXPECT_EQ(server_.stored(), rows);
    EXPECT_TRUE(bytes() == file);
    return plan;
  }

  void expect_plan_and_pass_alike(const Json_Document& config, const Json_Document* mapping) {
    const Plan plan = plan_without_a_trace(config, mapping);
    const Picture before = picture_of(server_);
    const auto rows_before = server_.stored();
    const Pass_Outcome outcome = host().apply(config, mapping);
    expect_same_outcome(plan.outcome, outcome);
    const Picture expected = carried_out(plan, before);
    const Picture after = picture_of(server_);
    EXPECT_EQ(after.triggers, expected.triggers);
    EXPECT_EQ(after.subscriptions, expected.subscriptions);
    EXPECT_EQ(after.detection, expected.detection);
    EXPECT_EQ(plan.changes_nothing(),
              server_.stored() == rows_before && outcome.reconciled.empty());
    count(plan);
  }

  static void expect_same_outcome(const Pass_Outcome& planned, const Pass_Outcome& outcome) {
    EXPECT_EQ(planned.status, outcome.status);
    EXPECT_EQ(messages_of(planned), messages_of(outcome));
    EXPECT_EQ(planned.reconciled, outcome.reconciled);
    EXPECT_EQ(lines_of(planned.state), lines_of(outcome.state));
    EXPECT_EQ(sizes_of(planned.changes), sizes_of(outcome.changes));
    EXPECT_EQ(planned.remarks.size(), outcome.remarks.size());
    EXPECT_EQ(planned.rejection.has_value(), outcome.rejection.has_value());
  }

  void count(const Plan& plan) {
    const Status status = plan.outcome.status;
    met_.done += static_cast<int>(status == Status::done);
    met_.failed += static_cast<int>(status == Status::failed);
    met_.rejected += static_cast<int>(status == Status::rejected);
    met_.with_errors += static_cast<int>(status == Status::done && !plan.outcome.errors.empty());
    met_.without_changes += static_cast<int>(status == Status::done && plan.changes_nothing());
  }

  Met& met_;
  Server_Around server_;
  Random_Site random_;
  Watched_Services services_;
  std::optional<Trigger_Host> host_;
  std::string config_ = R"({"triggers": []})";
};

class Random_Plans : public testing::TestWithParam<Database_Engine> {
 protected:
  static std::uint64_t lives() { return length_of_campaign("PLANNED_LIVES", 50); }

  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Random_Plans, testing::ValuesIn(database_engines()),
                         name_of_engine);

/// In this life, a pass fails before it looks at detection records, which have links to nothing: it
/// leaves them.
TEST_P(Random_Plans, tidy_up_nothing_that_a_pass_that_fails_does_not_come_to) {
  Met met;
  Planned_Life(GetParam(), 559, met).live(5);
}

TEST_P(Random_Plans, say_what_the_pass_then_does_and_leave_no_trace) {
  Met met;
  for (std::uint64_t seed = 1; seed <= lives() && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Planned_Life(GetParam(), seed, met).live(5);
  }
  if (HasFailure()) {
    return;
  }
  for (const int times :
       {met.done, met.failed, met.rejected, met.with_errors, met.without_changes, met.left_over}) {
    EXPECT_GT(times, 0);
  }
  std::cout << fmt::format(
      "plans of passes that were done: {}, of these with errors: {}, without changes: {}; that "
      "failed: {}, were rejected: {}; cameras left over: {}\n",
      met.done, met.with_errors, met.without_changes, met.failed, met.rejected, met.left_over);
}

}  // namespace
}  // namespace kuv::test
