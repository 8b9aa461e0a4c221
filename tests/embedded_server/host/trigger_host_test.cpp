// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/trigger_host.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <map>
#include <stdexcept>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"

namespace kuv::test {
namespace {

using Directive_Config_Processing::Error;
using Status = Pass_Outcome::Status;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Optional;

/// Remembers which cameras it was asked for, and does with each what the test says.
class Scripted_Capture_Manager : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t camera_id) override {
    asked_for.push_back(camera_id);
    if (act) {
      act(camera_id);
    }
  }

  std::vector<std::uint64_t> asked_for;
  std::function<void(std::uint64_t)> act;
};

class Scripted_Pusher : public Trigger_Notification_Pusher {
 public:
  void stop() override { ++stopped; }

  void apply_trigger_state(Trigger_Config_State state) override {
    states.push_back(std::move(state));
    if (act) {
      act();
    }
  }

  std::vector<Trigger_Config_State> states;
  std::function<void()> act;
  int stopped = 0;
};

[[noreturn]] void fail(const std::string& text) {
  throw std::runtime_error(text);
}

/// No child of the standard exception class.
struct Strange_Exception {};

/// Two cameras that send topic "a", and a trigger that listens to both.
class Trigger_Host_Test : public testing::Test, public Database_Fixture {
 protected:
  Trigger_Host_Test()
      : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("a").detecting_objects();
    site.given_camera(11).with_topic("a");
    site.store_in(database());
  }

  Trigger_Host& host() {
    if (!host_) {
      host_.emplace(database(), server_id, Host_Services{capture_manager, pusher});
    }
    return *host_;
  }

  /// The host of a process that is started anew.
  void restart() {
    host_.reset();
    close();
  }

  Pass_Outcome apply(const std::string& config) {
    return host().apply(Json_Document(config), nullptr);
  }
  Pass_Outcome apply(const std::string& config, const std::string& mapping) {
    const Json_Document given(mapping);
    return host().apply(Json_Document(config), &given);
  }

  /// Triggers that listen to one topic each.
  static std::string config_of(const std::map<std::uint64_t, std::string>& topics) {
    std::vector<std::string> triggers;
    for (const auto& [id, topic] : topics) {
      triggers.push_back(fmt::format(
          R"({{"id": {}, "name": "", "tags": {{}}, "sources": [
              {{"type": "onvif-metadata", "onvifTopic": "{}"}}]}})",
          id, topic));
    }
    return fmt::format(R"({{"triggers": [{}]}})", fmt::join(triggers, ", "));
  }

  Rows stored_documents() {
    return foreign_program().query("SELECT kind, text FROM document ORDER BY kind");
  }

  std::vector<std::uint64_t> pending_cameras() {
    std::vector<std::uint64_t> ids;
    for (const Row& row :
         foreign_program().query("SELECT camera_id FROM pending_camera ORDER BY camera_id")) {
      ids.push_back(std::stoull(row.at(0).value()));
    }
    return ids;
  }

  const std::string a_config = R"({"triggers": [{"id": 7, "name": "seven", "tags": {}, "sources": [
      {"type": "onvif-metadata", "onvifTopic": "a"},
      {"type": "object-detection", "searchItem": {"type": "car"}}]}]})";
  std::shared_ptr<Scripted_Capture_Manager> capture_manager =
      std::make_shared<Scripted_Capture_Manager>();
  std::shared_ptr<Scripted_Pusher> pusher = std::make_shared<Scripted_Pusher>();
  Log_Capture log;

 private:
  std::optional<Trigger_Host> host_;
};

auto is_error(Error::Category category, const std::string& message) {
  return AllOf(Field(&Error::category, category), Field(&Error::message, message));
}

Row row(const std::string& kind, const std::string& text) {
  return {kind, text};
}

TEST_F(Trigger_Host_Test, hands_the_state_to_the_pusher_and_the_cameras_to_the_capture_manager) {
  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(10, 11));
  ASSERT_EQ(pusher->states.size(), 1);
  EXPECT_EQ(pusher->states[0].applied_triggers.count(7), 1);
  ASSERT_TRUE(outcome.state);
  EXPECT_EQ(outcome.state->onvif_topics_by_trigger, pusher->states[0].onvif_topics_by_trigger);
  EXPECT_THAT(stored_documents(), ElementsAre(row("config", a_config)));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, works_without_services) {
  Trigger_Host alone(database(), server_id);

  const Pass_Outcome outcome = alone.apply(Json_Document(a_config), nullptr);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_TRUE(outcome.state);
}

TEST_F(Trigger_Host_Test, fails_an_apply_whose_state_the_pusher_does_not_take) {
  apply(R"({"triggers": []})");
  pusher->act = [] { fail("the queue is full"); };

  const Pass_Outcome outcome = apply(a_config, R"({"triggerMapping": []})");

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_THAT(outcome.errors,
              ElementsAre(is_error(Error::Category::failed_processing,
                                   "Failed to update trigger config: the queue is full")));
  EXPECT_THAT(outcome.remarks,
              ElementsAre("What the pass wrote is committed; the stored documents are still "
                          "the old ones."));
  EXPECT_FALSE(outcome.state);
  EXPECT_THAT(outcome.changes.triggers.added, ElementsAre(7));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(stored_documents(), ElementsAre(row("config", R"({"triggers": []})")));
  EXPECT_EQ(foreign_program().count("trigger_record"), 1);
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, fails_a_refresh_whose_state_the_pusher_does_not_take) {
  apply(a_config);
  pusher->act = [] { fail("the queue is full"); };

  const Pass_Outcome outcome = host().refresh();

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_THAT(
      outcome.errors,
      ElementsAre(is_error(Error::Category::failed_processing,
                           "Encountered error refreshing the trigger config: the queue is full")));
  EXPECT_FALSE(outcome.state);
  pusher->act = nullptr;
  EXPECT_EQ(host().refresh().status, Status::done);
}

TEST_F(Trigger_Host_Test, says_so_when_only_the_documents_could_not_be_stored) {
  host();
  foreign_program().execute(
      "CREATE TRIGGER trouble BEFORE INSERT ON document BEGIN INSERT INTO missing VALUES (1); END");

  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_THAT(outcome.errors,
              ElementsAre(is_error(Error::Category::failed_processing,
                                   "database " + location() + ": no such table: main.missing")));
  EXPECT_THAT(outcome.remarks,
              ElementsAre("The records of the pass are committed. Repeat the command to store "
                          "its documents too."));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_EQ(foreign_program().count("trigger_record"), 1);
  EXPECT_THAT(stored_documents(), IsEmpty());
  EXPECT_THAT(pending_cameras(), ElementsAre(10, 11));

  foreign_program().execute("DROP TRIGGER trouble");
  EXPECT_EQ(apply(a_config).status, Status::done);
  EXPECT_THAT(stored_documents(), ElementsAre(row("config", a_config)));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, lets_through_what_is_no_standard_exception_and_goes_on_afterwards) {
  pusher->act = [] { throw Strange_Exception(); };
  EXPECT_THROW(apply(a_config), Strange_Exception);
  EXPECT_THAT(stored_documents(), IsEmpty());
  EXPECT_THAT(pending_cameras(), ElementsAre(10, 11));

  pusher->act = nullptr;
  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(pending_cameras(), IsEmpty());
  EXPECT_THAT(stored_documents(), ElementsAre(row("config", a_config)));
}

TEST_F(Trigger_Host_Test, loses_no_camera_when_the_capture_manager_throws_something_strange) {
  capture_manager->act = [](std::uint64_t camera_id) {
    if (camera_id == 11) {
      throw Strange_Exception();
    }
  };
  EXPECT_THROW(apply(a_config), Strange_Exception);
  EXPECT_THAT(pusher->states, IsEmpty());

  capture_manager->act = nullptr;
  restart();
  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, asks_for_a_camera_that_failed_again_after_the_next_pass_not_in_this_one) {
  capture_manager->act = [](std::uint64_t camera_id) {
    if (camera_id == 10) {
      fail("the camera does not answer");
    }
  };

  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_THAT(outcome.reconciled, ElementsAre(11));
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(10, 11));
  EXPECT_THAT(pending_cameras(), ElementsAre(10));
  EXPECT_THAT(
      log.lines(logging::severity_level::error),
      ElementsAre(Log_Line{
          logging::severity_level::error, "Trigger_Manager",
          "Failed to reconcile metadata stream for camera 10: the camera does not answer"}));

  capture_manager->asked_for.clear();
  capture_manager->act = nullptr;
  restart();
  const Pass_Outcome next = host().refresh();

  EXPECT_EQ(next.status, Status::done);
  EXPECT_THAT(next.reconciled, ElementsAre(10));
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(10));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, keeps_a_camera_that_fails_again_for_the_pass_after) {
  capture_manager->act = [](std::uint64_t) { fail("no route"); };
  apply(a_config);
  capture_manager->asked_for.clear();

  const Pass_Outcome outcome = host().refresh();

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(10, 11));
  EXPECT_THAT(pending_cameras(), ElementsAre(10, 11));
  EXPECT_THAT(log.messages(),
              testing::Contains("Failed to reconcile metadata stream for camera 11; the next pass "
                                "tries again: no route"));
}

TEST_F(Trigger_Host_Test, reconciles_what_is_left_over_when_the_pass_fails_as_well) {
  capture_manager->act = [](std::uint64_t) { fail("no route"); };
  apply(a_config);
  capture_manager->act = nullptr;
  pusher->act = [] { fail("the queue is full"); };

  const Pass_Outcome outcome = host().refresh();

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, leaves_cameras_alone_whose_subscriptions_others_keep) {
  apply(config_of({{7, "a"}, {8, "a"}}));
  capture_manager->asked_for.clear();

  const Pass_Outcome outcome = apply(config_of({{7, "a"}}));

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_EQ(outcome.changes.subscription_links.deleted.size(), 2U);
  EXPECT_THAT(capture_manager->asked_for, IsEmpty());
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test, reconciles_cameras_whose_subscriptions_go_with_their_last_trigger) {
  site.given_camera(11).with_topic("b");
  site.store_in(database());
  apply(config_of({{7, "a"}, {8, "a"}, {9, "b"}}));
  capture_manager->asked_for.clear();

  const Pass_Outcome outcome = apply(config_of({{7, "a"}}));

  EXPECT_EQ(outcome.changes.subscriptions.deleted.size(), 1U);
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(11));
  EXPECT_THAT(outcome.reconciled, ElementsAre(11));
}

TEST_F(Trigger_Host_Test, reconciles_after_a_pass_cut_short_only_the_cameras_that_it_changed) {
  site.given_camera(11).with_topic("b");
  site.store_in(database());
  apply(config_of({{7, "a"}, {8, "a"}}));
  capture_manager->asked_for.clear();
  capture_manager->act = [](std::uint64_t) { throw Strange_Exception(); };
  EXPECT_THROW(apply(config_of({{7, "a"}, {9, "b"}})), Strange_Exception);
  EXPECT_THAT(pending_cameras(), ElementsAre(11));

  capture_manager->act = nullptr;
  capture_manager->asked_for.clear();
  restart();
  const Pass_Outcome outcome = apply(config_of({{7, "a"}, {9, "b"}}));

  EXPECT_THAT(capture_manager->asked_for, ElementsAre(11));
  EXPECT_THAT(outcome.reconciled, ElementsAre(11));
  EXPECT_THAT(pending_cameras(), IsEmpty());
}

TEST_F(Trigger_Host_Test,
       tells_which_cameras_were_reconciled_though_the_database_failed_behind_it) {
  capture_manager->act = [this](std::uint64_t camera_id) {
    if (camera_id == 11) {
      foreign_program().execute("ALTER TABLE pending_camera RENAME TO elsewhere");
    }
  };

  const Pass_Outcome outcome = apply(a_config);

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_THAT(capture_manager->asked_for, ElementsAre(10, 11));
  EXPECT_THAT(outcome.reconciled, ElementsAre(10, 11));
  EXPECT_THAT(outcome.remarks,
              ElementsAre("The records of the pass are committed. Repeat the command to store "
                          "its documents too."));
  foreign_program().execute("ALTER TABLE elsewhere RENAME TO pending_camera");
  capture_manager->act = nullptr;
  EXPECT_THAT(apply(a_config).reconciled, ElementsAre(10, 11));
}

TEST_F(Trigger_Host_Test, tells_what_a_document_was_rejected_for_as_check_does) {
  const std::string config = "{\"triggers\": [\n  {\"id\": \"x\"}]}";

  const Pass_Outcome outcome = apply(config);

  EXPECT_EQ(outcome.status, Status::rejected);
  EXPECT_THAT(
      outcome.errors,
      ElementsAre(is_error(Error::Category::rejected_document,
                           "Failed to parse trigger config: \"id\" field is missing or invalid.")));
  ASSERT_TRUE(outcome.rejection);
  const auto checked = host().check(Json_Document(config), nullptr);
  ASSERT_EQ(checked.size(), 4);  // it has no name, no tags and no sources either
  for (const Check_Fault& fault : {*outcome.rejection, checked.front()}) {
    EXPECT_EQ(fault.document, "config");
    EXPECT_EQ(fault.fault.message, "\"id\" field is missing or invalid.");
    EXPECT_EQ(fault.fault.location.line, 2);
    EXPECT_EQ(fault.fault.location.column, 10);
    EXPECT_THAT(fault.index, Optional(0));
    EXPECT_EQ(fault.id, std::nullopt);
  }
  EXPECT_THAT(capture_manager->asked_for, IsEmpty());
  EXPECT_THAT(pusher->states, IsEmpty());
}

/// "document line:column index id: what is wrong", one each.
std::vector<std::string> texts_of(const std::vector<Check_Fault>& faults) {
  std::vector<std::string> texts;
  for (const Check_Fault& fault : faults) {
    const auto text = [](const auto& number) { return number ? std::to_string(*number) : "-"; };
    texts.push_back(fmt::format("{} {}:{} {} {}: {}", fault.document, fault.fault.location.line,
                                fault.fault.location.column, text(fault.index), text(fault.id),
                                fault.fault.message));
  }
  return texts;
}

TEST_F(Trigger_Host_Test, tells_every_fault_of_every_trigger_and_association) {
  const Json_Document config(R"({"properties": {"notificationNackDelayMs": "1"}, "triggers": [
{"id": 1, "name": "fine", "tags": {}, "sources": [{"type": "metadata-event"}]},
{"id": 2, "name": 2, "scheduleIds": 3},
{"id": 1, "name": "twin", "tags": {}, "sources": [{"type": "metadata-event"}]},
7,
{"id": 3, "name": "", "tags": {}, "sources": [{"type": "external"}, {"type": "onvif-metadata"}]},
{"id": 4, "name": "", "tags": {"camera": {"a": 1}}, "sources": []}]})");
  const Json_Document mapping(R"({"triggerMapping": [
{"scheduleIds": [], "triggerIds": [1]}, {"triggerIds": [1]},
{"scheduleIds": [], "triggerIds": []}]})");

  EXPECT_THAT(
      texts_of(host().check(config, &mapping)),
      ElementsAre(
          R"(config 1:44 - -: "properties.notificationNackDelayMs" must be an unsigned integer.)",
          R"(mapping 2:41 1 -: "scheduleIds" array is missing or invalid.)",
          R"(mapping 3:35 2 -: "triggerIds" array is empty.)",
          R"(config 3:19 1 2: "name" field is missing or invalid.)",
          R"(config 3:1 1 2: "tags" must be a JSON object.)",
          R"(config 3:1 1 2: "sources" array is missing or invalid.)",
          R"(config 3:37 1 2: "scheduleIds" array is missing or invalid.)",
          R"(config 4:8 2 1: All "id" values must be unique, 1 is duplicated.)",
          R"(config 5:1 3 -: "triggers" must be an array of JSON objects.)",
          R"(config 6:69 4 3: An onvif-metadata source has a missing or invalid "onvifTopic" field.)",
          R"(config 7:48 5 4: Tag "a" must be a string, null or an array of them.)",
          R"(config 7:64 5 4: "sources" array is empty.)"));
}

TEST_F(Trigger_Host_Test, tells_what_else_is_wrong_behind_a_fault_of_a_whole_document) {
  const Json_Document nothing("{}");
  EXPECT_THAT(
      texts_of(host().check(Json_Document(R"({"properties": 1, "triggers": 1})"), &nothing)),
      ElementsAre(R"(config 1:16 - -: "properties" must be a JSON object.)",
                  R"(mapping 1:1 - -: "triggerMapping" array is missing or invalid.)",
                  R"(config 1:31 - -: Missing "triggers" array.)"));
  const Json_Document list("[]");
  EXPECT_THAT(texts_of(host().check(list, &list)),
              ElementsAre("config 1:1 - -: Trigger configuration must be a JSON object.",
                          "mapping 1:1 - -: Trigger mapping must be a JSON object."));
  foreign_program().execute("DELETE FROM server");
  EXPECT_THAT(texts_of(host().check(Json_Document(R"({"triggers": [7]})"), nullptr)),
              ElementsAre("config 0:0 - -: Failed to retrieve server tags due to invalid server ID",
                          R"(config 1:15 0 -: "triggers" must be an array of JSON objects.)"));
}

TEST_F(Trigger_Host_Test, tells_no_place_in_a_stored_mapping) {
  apply(a_config, R"({"triggerMapping": []})");
  foreign_program().execute(
      "UPDATE document SET text = '{\"triggerMapping\": [7]}' "
      "WHERE kind = 'mapping'");
  const Json_Document config(a_config);

  EXPECT_THAT(
      texts_of(host().check(config, nullptr)),
      ElementsAre(R"(mapping 0:0 0 -: "triggerMapping" must be an array of JSON objects.)"));
  const auto rejection = host().apply(config, nullptr).rejection;
  ASSERT_TRUE(rejection);
  EXPECT_EQ(texts_of({*rejection}), texts_of(host().check(config, nullptr)));
}

TEST_F(Trigger_Host_Test, takes_a_stored_mapping_without_a_list_for_an_empty_one) {
  apply(a_config, R"({"triggerMapping": []})");
  foreign_program().execute("UPDATE document SET text = '{}' WHERE kind = 'mapping'");

  EXPECT_THAT(host().check(Json_Document(a_config), nullptr), IsEmpty());
  EXPECT_EQ(apply(a_config).status, Status::done);
}

TEST_F(Trigger_Host_Test, rejects_a_mapping_that_is_given_without_its_list) {
  apply(a_config, R"({"triggerMapping": [ ]})");

  for (const char* mapping : {"{}", R"({"triggerMapping": null})"}) {
    const Pass_Outcome outcome = apply(a_config, mapping);
    EXPECT_EQ(outcome.status, Status::rejected);
    EXPECT_THAT(outcome.errors,
                ElementsAre(is_error(Error::Category::rejected_document,
                                     "Failed to parse trigger config: \"triggerMapping\" array is "
                                     "missing or invalid.")));
    EXPECT_THAT(stored_documents(),
                testing::Contains(row("mapping", R"({"triggerMapping": [ ]})")));
  }
}

/// Runs on a thread with as little stack as servers give theirs.
void run_on_a_small_stack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{1} << 20), 0);
  pthread_t thread{};
  const auto run = [](void* given) -> void* {
    (*static_cast<const std::function<void()>*>(given))();
    return nullptr;
  };
  std::function<void()> copy = work;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &copy), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  EXPECT_EQ(pthread_attr_destroy(&attributes), 0);
}

TEST_F(Trigger_Host_Test, needs_no_more_stack_for_a_longer_name) {
  host();
  for (const std::size_t letters : {4000, 30000, 4000000}) {
    const std::string name(letters, 'x');
    const std::string config =
        R"({"triggers": [{"id": 7, "name": "", "sources": [{"type": "metadata-event"}],
"tags": {"server": {")" +
        name + R"(": 1}}}]})";
    run_on_a_small_stack([&] {
      const auto found = host().check(Json_Document(config), nullptr);
      ASSERT_EQ(found.size(), 1);
      EXPECT_EQ(found[0].fault.message,
                "Tag \"" + name + "\" must be a string, null or an array of them.");
      EXPECT_EQ(found[0].fault.location.column, 25 + letters);
      EXPECT_EQ(apply(config).status, Status::rejected);
    });
  }
}

TEST_F(Trigger_Host_Test, needs_no_more_stack_for_deeper_values) {
  host();
  const std::string deep = std::string(990, '[') + std::string(990, ']');
  run_on_a_small_stack([&] {
    EXPECT_THAT(
        texts_of(host().check(Json_Document(R"({"triggers": [{"id": 7, "name": "",
"sources": [{"type": "metadata-event"}], "tags": {}, "scheduleIds": [)" +
                                            deep + "]}]}"),
                              nullptr)),
        ElementsAre(R"(config 2:70 0 7: "scheduleIds" must be an array of unsigned integers.)"));
  });
}

TEST_F(Trigger_Host_Test, rejects_a_mapping_that_is_no_object) {
  const Pass_Outcome outcome = apply(a_config, " []");

  EXPECT_EQ(outcome.status, Status::rejected);
  EXPECT_THAT(outcome.errors,
              ElementsAre(is_error(
                  Error::Category::rejected_document,
                  "Failed to parse trigger config: Trigger mapping must be a JSON object.")));
  ASSERT_TRUE(outcome.rejection);
  EXPECT_EQ(outcome.rejection->document, "mapping");
  EXPECT_EQ(outcome.rejection->fault.location.column, 2);
  EXPECT_THAT(stored_documents(), IsEmpty());
}

TEST_F(Trigger_Host_Test, fails_and_does_not_reject_when_the_database_does) {
  host();
  foreign_program().execute("DROP TABLE server");

  for (const char* mapping : {R"({"triggerMapping": []})", R"({"triggerMapping": [
      {"scheduleIds": [1], "triggerIds": [7]}]})"}) {
    const Pass_Outcome outcome = apply(a_config, mapping);
    EXPECT_EQ(outcome.status, Status::failed);
    EXPECT_FALSE(outcome.rejection);
    ASSERT_EQ(outcome.errors.size(), 1);
    EXPECT_EQ(outcome.errors[0].message,
              "Failed to parse trigger config: database " + location() + ": no such table: server");
  }
  EXPECT_THROW(host().check(Json_Document(a_config), nullptr), Database_Error);
  EXPECT_THAT(stored_documents(), IsEmpty());
}

TEST_F(Trigger_Host_Test, fails_when_the_object_types_cannot_be_read_whatever_the_mapping_is) {
  host();
  foreign_program().execute("DROP TABLE meta_type");
  EXPECT_THROW(apply(a_config, "[]"), Database_Error);
  EXPECT_THROW(apply(a_config), Database_Error);
  EXPECT_THROW(host().refresh(), Database_Error);
}

struct Damage {
  const char* name;
  const char* text;
};

std::ostream& operator<<(std::ostream& stream, const Damage& damage) {
  return stream << damage.name;
}

class Damaged_Documents : public Trigger_Host_Test, public testing::WithParamInterface<Damage> {
 protected:
  void given_a_damaged(const std::string& kind) {
    apply(a_config, R"({"triggerMapping": []})");
    foreign_program().execute("UPDATE document SET text = '" + std::string(GetParam().text) +
                              "' WHERE kind = '" + kind + "'");
  }

  std::string complaint_of(const std::function<void()>& act) {
    try {
      act();
      return "none";
    } catch (const Database_Error& error) {
      return error.what();
    }
  }

  static constexpr auto damaged_config =
      "the stored configuration is damaged: it is not a JSON object; apply it again";
  static constexpr auto damaged_mapping =
      "the stored mapping is damaged: it is not a JSON object; apply it again";
};

TEST_P(Damaged_Documents, end_a_refresh) {
  given_a_damaged("config");
  EXPECT_EQ(complaint_of([&] { host().refresh(); }), damaged_config);
  given_a_damaged("mapping");
  EXPECT_EQ(complaint_of([&] { host().refresh(); }), damaged_mapping);
  EXPECT_EQ(foreign_program().count("trigger_record"), 1);
}

TEST_P(Damaged_Documents, are_replaced_by_new_ones) {
  given_a_damaged("config");
  EXPECT_EQ(apply(a_config).status, Status::done);
  EXPECT_EQ(host().refresh().status, Status::done);
  given_a_damaged("mapping");
  EXPECT_EQ(apply(a_config, R"({"triggerMapping": [ ]})").status, Status::done);
  EXPECT_THAT(stored_documents(),
              ElementsAre(row("config", a_config), row("mapping", R"({"triggerMapping": [ ]})")));
}

TEST_P(Damaged_Documents, are_no_fault_of_a_new_configuration) {
  given_a_damaged("mapping");
  const Json_Document config(a_config);
  EXPECT_EQ(complaint_of([&] { host().apply(config, nullptr); }), damaged_mapping);
  EXPECT_EQ(complaint_of([&] { host().check(config, nullptr); }), damaged_mapping);
  const Json_Document mapping(R"({"triggerMapping": []})");
  EXPECT_THAT(host().check(config, &mapping), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, Damaged_Documents,
                         testing::Values(Damage{"empty", ""}, Damage{"an_array", "[]"},
                                         Damage{"a_number", "7"}, Damage{"cut_off", "{\"trig"},
                                         Damage{"too_long", "{}}"}),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace kuv::test
