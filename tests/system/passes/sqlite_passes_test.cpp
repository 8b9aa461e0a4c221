// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/sqlite_connection.h"
#include "system/passes/whole_pass_test.h"

namespace kuv::test {
namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// What can be told of SQLite alone: rows counted, and texts too long for it.
class Passes_On_SQLite : public testing::Test, public Server_Around {
 protected:
  Passes_On_SQLite() : Server_Around({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_schedule(1);
    site.given_camera(10).with_topic("a").with_topic("b").detecting_objects();
    site.given_camera(11).with_topic("a").detecting_motion();
    site.given_generic_subscription(100).with_tag("door");
    site.given_generic_subscription(101);
  }

  void given_a_limit_of(int bytes) {
    sqlite3_limit(idle_connection(*database()), SQLITE_LIMIT_LENGTH, bytes);
  }

  Log_Capture log;
};

TEST_F(Passes_On_SQLite, write_not_one_row_when_nothing_changed) {
  ASSERT_THAT(update_config(R"({"triggers": [
      {"id": 7, "name": "topics", "tags": {}, "scheduleIds": [1], "sources": [
        {"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "onvif-metadata", "onvifTopic": "b"},
        {"type": "object-detection", "searchItem": {"type": "car"}}]},
      {"id": 8, "name": "without topics", "tags": {}, "sources": [
        {"type": "metadata-event"}, {"type": "motion-detection"}]},
      {"id": 9, "name": "of no camera", "tags": {"camera": {"nowhere": null}}, "sources": [
        {"type": "metadata-event"}, {"type": "onvif-metadata", "onvifTopic": "a"}]},
      {"id": 10, "name": "by tag", "tags": {"eventSubscription": {"door": null}}, "sources": [
        {"type": "metadata-event"}, {"type": "onvif-metadata", "onvifTopic": "b"}]}]})")
                  .errors,
              IsEmpty());
  ASSERT_THAT(generic_subscriptions(),
              ElementsAre("subscription 100: 8 9 10", "subscription 101: 8 9"));
  const auto version = [this] { return foreign_program().query("PRAGMA data_version"); };
  const Rows version_before = version();
  sqlite3* const connection = idle_connection(*database());
  const std::int64_t rows_before = rows_written(connection);

  EXPECT_TRUE(refresh().success);
  EXPECT_TRUE(refresh().success);

  EXPECT_EQ(rows_written(connection), rows_before);
  EXPECT_EQ(version(), version_before);
}

/// A refresh of a site that nothing changed on.
class Unchanged_Refreshes_On_SQLite : public Passes_On_SQLite {
 protected:
  /// Some triggers on topics, detection and generic events, each on every camera.
  static std::string config_of(int triggers) {
    std::string text;
    for (int id = 1; id <= triggers; ++id) {
      text += (id == 1 ? "" : ",") + (R"({"id": )" + std::to_string(id)) +
              R"(, "name": "n", "tags": {}, "sources": [
                {"type": "onvif-metadata", "onvifTopic": "a"}, {"type": "metadata-event"},
                {"type": "object-detection", "searchItem": {"type": "car"}}]})";
    }
    return R"({"triggers": [)" + text + "]}";
  }

  std::vector<std::string> statements_of_a_refresh() {
    const Statement_Trace trace(idle_connection(*database()));
    EXPECT_TRUE(refresh().success);
    return trace.statements();
  }
};

TEST_F(Unchanged_Refreshes_On_SQLite, execute_the_same_statements_however_large_the_site_is) {
  update_config(config_of(1));
  const std::vector<std::string> of_a_small_site = statements_of_a_refresh();

  for (std::uint64_t id = 200; id < 260; ++id) {
    site.given_camera(id).with_topic("a").detecting_objects();
  }
  site.store_in(database());
  update_config(config_of(40));
  ASSERT_EQ(foreign_program().count("subscription_trigger"), 40U * (62 + 2));

  EXPECT_EQ(statements_of_a_refresh(), of_a_small_site);
}

TEST_F(Unchanged_Refreshes_On_SQLite, execute_no_statement_that_writes) {
  update_config(config_of(3));

  EXPECT_THAT(statements_of_a_refresh(), Each(AnyOf(StartsWith("SELECT"), StartsWith("BEGIN"),
                                                    StartsWith("COMMIT"), StartsWith("ROLLBACK"))));
}

TEST_F(Unchanged_Refreshes_On_SQLite, read_each_table_once) {
#ifndef NDEBUG
  GTEST_SKIP() << "the self-check of this build reads the tables once more";
#endif
  update_config(config_of(3));

  std::set<std::string> seen;
  for (const std::string& statement : statements_of_a_refresh()) {
    EXPECT_TRUE(statement.find("_trigger") == std::string::npos || seen.insert(statement).second)
        << statement;
  }
  EXPECT_THAT(seen, Not(IsEmpty()));
}

TEST_F(Passes_On_SQLite, report_a_trigger_that_cannot_be_stored_and_go_on) {
  given_a_limit_of(2000);
  const std::string large(3000, 'x');
  const auto config = [](const std::string& first, const std::string& second) {
    return R"({"triggers": [
        {"id": 7, "name": ")" +
           first + R"(", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]},
        {"id": 8, "name": ")" +
           second + R"(", "tags": {}, "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
          {"type": "object-detection", "searchItem": {"type": "car"}}]}]})";
  };

  Outcome outcome = update_config(config(large, "small"));
  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(outcome.errors,
              ElementsAre("1: Trigger 7: Failed to process config (Failed to create trigger)."));
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 8", "camera 11 topic a: 8"));

  outcome = update_config(config("small", large));
  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(outcome.errors,
              ElementsAre("1: Trigger 8: Failed to process config (Failed to update trigger)."));
  EXPECT_THAT(lines_of(outcome.state),
              ElementsAre("7 applied", "7 camera 10 topics a", "7 camera 11 topics a",
                          "error Trigger 8: Failed to process config (Failed to update trigger)."));
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7"));
  EXPECT_THAT(detections(), IsEmpty());
  EXPECT_THAT(stored_triggers(),
              ElementsAre("trigger 7 \"small\" schedules [] sources [type 0 topic \"a\"]"));
}

TEST_F(Passes_On_SQLite, report_a_subscription_that_cannot_be_stored_and_go_on) {
  // Short enough for a source, too long for a subscription, which is named after its topic.
  const std::string large(1500, 't');
  site.given_camera(11).with_topic(large);
  given_a_limit_of(2000);

  const Outcome outcome = update_config(R"({"triggers": [{"id": 7, "name": "", "tags": {},
      "sources": [{"type": "onvif-metadata", "onvifTopic": "a"},
                  {"type": "onvif-metadata", "onvifTopic": ")" +
                                        large + R"("}]}]})");

  EXPECT_TRUE(outcome.success);
  EXPECT_THAT(
      outcome.errors,
      ElementsAre("1: Trigger 7: Failed to create subscription for trigger | ONVIF topic \"" +
                  large + "\", camera ID 11"));
  EXPECT_THAT(topic_subscriptions(), ElementsAre("camera 10 topic a: 7", "camera 11 topic a: 7"));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
}

}  // namespace
}  // namespace kuv::test
