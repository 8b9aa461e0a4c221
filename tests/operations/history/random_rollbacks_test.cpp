// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Random histories with rollbacks: as long as cameras can report what they could, the records after
// a rollback are those that a fresh site gets from the same documents.
//
//     HISTORY_CAMPAIGN=500   how many histories (default: 15 on each engine)

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

#include "system/passes/random_life.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/embedded_server/persistent/history.h"
#include "vemora/operations/history/pass_documents.h"

namespace kuv::test {
namespace {

using operations::Document_Texts;
using Status = Pass_Outcome::Status;

/// Everything that a pass writes, without the ids that it gives out.
std::vector<std::vector<std::string>> records_of(Server_Around& server) {
  return {server.stored_triggers(), server.topic_subscriptions(), server.generic_subscriptions(),
          server.detections()};
}

Pass_Outcome apply(Server_Around& server, const Document_Texts& documents) {
  const Json_Document mapping(documents.mapping);
  return Trigger_Host(server.database(), server.server_id)
      .apply(Json_Document(documents.config), &mapping);
}

/// One pass after the other over a random site, some of them back to where another one led.
class Random_History {
 public:
  Random_History(const Database_Engine& engine, std::uint64_t seed)
      : engine_(engine), server_(engine), random_(server_.site, server_.server_id, seed) {}

  void live(int passes) {
    for (int number = 0; number < passes && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE("pass " + std::to_string(number));
      if (random_.one_in(3)) {
        change_all_but_capabilities();
      }
      next_pass();
      expect_history_to_agree();
    }
  }

  int rollbacks() const { return rollbacks_; }

 private:
  void change_all_but_capabilities() {
    const std::map<std::uint64_t, Site_Camera> before = server_.site.cameras();
    random_.change();
    for (const auto& [id, camera] : before) {
      server_.site.given_camera(id).topics = camera.topics;
    }
    server_.site.store_in(server_.database());
  }

  void next_pass() {
    switch (random_.pick(5)) {
      case 0:
        return expect_done(Trigger_Host(server_.database(), server_.server_id).refresh());
      case 1:
      case 2:
        return roll_back();
      default:
        return change_documents();
    }
  }

  void change_documents() {
    const Json_Document config(text_of(document_of(random_.some_triggers())));
    const Json_Document mapping(text_of(document_of(random_.some_mapping())));
    expect_done(Trigger_Host(server_.database(), server_.server_id)
                    .apply(config, random_.one_in(2) ? &mapping : nullptr));
  }

  void roll_back() {
    const std::vector<History_Entry> entries = read_history(server_.database());
    if (entries.empty()) {
      return;
    }
    const Document_Texts documents =
        operations::documents_of_pass(server_.database(), random_.any_of(entries).pass);
    expect_done(apply(server_, documents));
    EXPECT_EQ(read_documents(server_.database()).config, documents.config);
    EXPECT_EQ(read_documents(server_.database()).mapping, documents.mapping);
    Server_Around fresh(engine_);
    fresh.site = server_.site;
    expect_done(apply(fresh, documents));
    EXPECT_EQ(records_of(server_), records_of(fresh));
    ++rollbacks_;
  }

  void expect_done(const Pass_Outcome& outcome) {
    EXPECT_EQ(outcome.status, Status::done);
    EXPECT_TRUE(outcome.errors.empty());
  }

  /// Every pass of it, none left out, has its documents, the last one those that are stored.
  void expect_history_to_agree() {
    const std::vector<History_Entry> entries = read_history(server_.database());
    for (std::size_t place = 0; place < entries.size(); ++place) {
      const auto past = read_past_pass(server_.database(), entries.size() - place);
      ASSERT_TRUE(past);
      EXPECT_EQ(past->entry.pass, entries[place].pass);
      EXPECT_EQ(past->entry.status, History_Entry::Status::done);
      EXPECT_EQ(past->config.was_there, past->config.text.has_value());
      EXPECT_EQ(past->mapping.was_there, past->mapping.text.has_value());
      if (place == 0) {
        EXPECT_EQ(past->config.text, read_documents(server_.database()).config);
        EXPECT_EQ(past->mapping.text, read_documents(server_.database()).mapping);
      }
    }
  }

  static std::string text_of(const Json::Value& document) { return document.toStyledString(); }

  Database_Engine engine_;
  Server_Around server_;
  Random_Site random_;
  int rollbacks_ = 0;
};

class Random_Histories : public testing::TestWithParam<Database_Engine> {
 protected:
  static std::uint64_t histories() { return length_of_campaign("HISTORY_CAMPAIGN", 15); }

  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Random_Histories, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Random_Histories, lead_back_to_what_a_fresh_apply_makes) {
  int rollbacks = 0;
  for (std::uint64_t seed = 1; seed <= histories() && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Random_History history(GetParam(), seed);
    history.live(10);
    rollbacks += history.rollbacks();
  }
  std::cout << histories() << " histories, " << rollbacks << " rollbacks\n";
  EXPECT_GT(rollbacks, 0);
}

}  // namespace
}  // namespace kuv::test
