// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <future>
#include <new>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"
#include "trigger_manager/scripted_site.h"
#include "vemora/platform/errors/vemora_error.h"

// Every call that a pass makes fails once: with a standard exception, for want of memory, with
// something else, and, where it can, by refusing. The tables say what comes of it.

namespace kuv::test {
namespace {

using testing::ElementsAreArray;
using Answer = Scripted_Site::Answer;
using Ids = std::set<std::uint64_t>;

/// What comes of a call that failed.
struct Outcome {
  enum class Kind {
    cannot_happen,  ///< the call has no such failure
    goes_on,        ///< nobody hears of it
    is_logged,      ///< in these words, and nothing more
    is_reported,    ///< in these words, and its trigger is applied all the same
    leaves_out,     ///< its trigger is not applied, and that is no error
    fails_trigger,  ///< its trigger is not applied, and reported
    rejects,        ///< the document is
    fails_pass,     ///< all of it
  };

  Kind kind;
  std::uint64_t trigger = 0;
  std::string text{};  ///< empty where the exception has one
};

const Outcome cannot{Outcome::Kind::cannot_happen};
const Outcome goes_on{Outcome::Kind::goes_on};
const Outcome rejects{Outcome::Kind::rejects};
const Outcome fails_pass{Outcome::Kind::fails_pass};

Outcome rejects_with(std::string text) {
  return {Outcome::Kind::rejects, 0, std::move(text)};
}
Outcome logs(std::string text) {
  return {Outcome::Kind::is_logged, 0, std::move(text)};
}
Outcome reports(std::string text) {
  return {Outcome::Kind::is_reported, 0, std::move(text)};
}
Outcome leaves_out(std::uint64_t trigger) {
  return {Outcome::Kind::leaves_out, trigger, {}};
}
Outcome fails(std::uint64_t trigger, std::string text = {}) {
  return {Outcome::Kind::fails_trigger, trigger, std::move(text)};
}

struct Row {
  const char* call;
  Outcome when_it_throws;
  Outcome when_it_refuses;
};
using Table = std::vector<Row>;

const char* const thrown_text = "it {} failed";

const Table& the_full_pass() {
  static const Table table{
      // Reading the documents. A source type that cannot be converted is for newer servers.
      {"parse properties", rejects, cannot},
      {"log Trigger_Parser of severity 1", rejects, cannot},
      {"parse mapping", rejects, cannot},
      {"schedule 2", rejects, leaves_out(7)},
      {"parse triggers", rejects, cannot},
      {"server 1", rejects,
       rejects_with("Failed to retrieve server tags due to invalid server ID")},
      {"parse_search_tags", rejects, cannot},
      {"parse_search_tags", rejects, cannot},
      {"parse_search_tags", rejects, cannot},
      {"convert onvif-metadata", goes_on, cannot},
      {"convert metadata-event", goes_on, cannot},
      {"convert object-detection", goes_on, cannot},
      {"convert motion-detection", goes_on, cannot},
      {"schedule 1", rejects, leaves_out(7)},
      {"matches_any of 1 terms", rejects, cannot},
      {"convert audio-detection", leaves_out(8), cannot},
      {"matches_any of 0 terms", rejects, cannot},
      {"parse_search_tags", rejects, cannot},
      {"convert audio-detection", leaves_out(9), cannot},
      {"matches_any of 1 terms", rejects, cannot},
      {"parse_search_tags", rejects, cannot},
      {"convert audio-detection", leaves_out(10), cannot},
      {"matches_any of 0 terms", rejects, cannot},

      // Trigger 7: its record.
      {"find trigger 7", fails(7), goes_on},
      {"add trigger 7", fails(7), fails(7, "Failed to create trigger")},
      {"cameras matching tags [\"area=gate\"]", fails(7), goes_on},
      // Its topic.
      {"cameras [10, 11, 12] needing a subscription to tns1:A", fails(7), goes_on},
      {"log Trigger_Manager of severity 3", fails(7), cannot},
      {"subscription 0: add_trigger 7", fails(7), cannot},
      {"add subscription to tns1:A", fails(7),
       reports("Trigger 7: Failed to create subscription for trigger | ONVIF topic \"tns1:A\", "
               "camera ID 10")},
      {"log Trigger_Manager of severity 1", fails(7), cannot},
      {"topic subscriptions lacking 7 matching topics [\"tns1:A\"] cameras [10, 11, 12] matching "
       "tags []",
       fails(7), goes_on},
      {"subscription 2: add_trigger 7", fails(7), cannot},
      {"update subscription 2", fails(7),
       reports("Trigger 7: Failed to add trigger to subscription 2 | ONVIF topic \"tns1:A\", "
               "camera ID 12")},
      {"subscription 2: camera_id", fails(7), cannot},
      {"any subscriptions holding 7 outside topics [\"tns1:A\"] cameras [10, 11, 12] matching "
       "tags []",
       fails(7), goes_on},
      {"subscription 3: remove_trigger 7", fails(7), cannot},
      {"update subscription 3", fails(7),
       reports("Trigger 7: Failed to remove trigger from subscription 3 | ONVIF topic \"tns1:B\", "
               "camera ID 13")},
      {"subscription 3: camera_id", fails(7), cannot},
      // Its generic events.
      {"generic subscriptions lacking 7 matching topics [] cameras [] matching tags "
       "[\"door=main\"]",
       fails(7), goes_on},
      {"subscription 4: add_trigger 7", fails(7), cannot},
      {"update subscription 4", fails(7),
       reports("Trigger 7: Failed to add trigger to subscription 4")},
      {"generic subscriptions holding 7 matching topics [] cameras [] not matching tags "
       "[\"door=main\"]",
       fails(7), goes_on},
      {"subscription 5: remove_trigger 7", fails(7), cannot},
      {"update subscription 5", fails(7),
       reports("Trigger 7: Failed to remove trigger from subscription 5")},
      // Its objects and its motion.
      {"object-detection cameras of [10, 11, 12]", fails(7), goes_on},
      {"compare camera 10 with 11", fails(7), cannot},
      {"compare camera 11 with 10", fails(7), cannot},
      {"motion-detection cameras of [10, 11, 12]", fails(7), goes_on},
      {"compare camera 11 with 12", fails(7), cannot},
      {"compare camera 12 with 11", fails(7), cannot},
      {"map of camera 10", fails(7), goes_on},
      {"eta_camera 0: add_trigger 7", fails(7), cannot},
      {"add map", fails(7),
       reports("Trigger 7: Failed to create ETA camera map for trigger | camera ID 10")},
      {"map of camera 11", fails(7), goes_on},
      {"eta_camera 111: add_trigger 7", fails(7), cannot},
      {"update map 111", fails(7),
       reports("Trigger 7: Failed to add trigger to ETA camera map | camera ID 11")},
      {"map of camera 12", fails(7), goes_on},
      {"eta_camera 112: add_trigger 7", fails(7), cannot},
      {"update map 112", fails(7),
       reports("Trigger 7: Failed to add trigger to ETA camera map | camera ID 12")},
      {"maps holding 7 outside cameras [10, 11, 12]", fails(7), goes_on},
      {"eta_camera 113: remove_trigger 7", fails(7), cannot},
      {"compare trigger 7 with 7", fails(7), cannot},
      {"compare trigger 7 with 7", fails(7), cannot},
      {"update map 113", fails(7),
       reports("Trigger 7: Failed to remove trigger from object detection map | camera ID 13")},

      // Trigger 8, which was renamed.
      {"find trigger 8", fails(8), goes_on},
      {"update trigger 8", fails(8), fails(8, "Failed to update trigger")},
      {"any subscriptions holding 8 outside topics [] cameras [] matching tags []", fails(8),
       goes_on},
      {"generic subscriptions holding 8 matching topics [] cameras [] matching tags []", fails(8),
       goes_on},
      {"maps holding 8 outside cameras []", fails(8), goes_on},

      // Trigger 9, which is inactive here.
      {"find trigger 9", fails(9), goes_on},
      {"any subscriptions holding 9 matching topics [] cameras [] matching tags []", fails(9),
       goes_on},
      {"subscription 6: remove_trigger 9", fails(9), cannot},
      {"update subscription 6", fails(9),
       reports("Trigger 9: Failed to remove trigger from subscription 6 | ONVIF topic \"tns1:C\", "
               "camera ID 14")},
      {"subscription 6: camera_id", fails(9), cannot},
      {"maps holding 9 matching cameras []", fails(9), goes_on},
      {"eta_camera 114: remove_trigger 9", fails(9), cannot},
      {"compare trigger 9 with 9", fails(9), cannot},
      {"compare trigger 9 with 9", fails(9), cannot},
      {"update map 114", fails(9),
       reports("Trigger 9: Failed to remove trigger from object detection map | camera ID 14")},

      // Trigger 10, whose cameras do not exist.
      {"find trigger 10", fails(10), goes_on},
      {"update trigger 10", fails(10), fails(10, "Failed to update trigger")},
      {"cameras matching tags [\"nowhere=at all\"]", fails(10), goes_on},
      {"any subscriptions holding 10 matching topics [] cameras [] matching tags []", fails(10),
       goes_on},
      {"subscription 7: remove_trigger 10", fails(10), cannot},
      {"update subscription 7", fails(10),
       reports("Trigger 10: Failed to remove trigger from subscription 7 | ONVIF topic "
               "\"tns1:D\", camera ID 15")},
      {"subscription 7: camera_id", fails(10), cannot},
      {"generic subscriptions holding 10 matching topics [] cameras [] matching tags []", fails(10),
       goes_on},
      {"maps holding 10 matching cameras []", fails(10), goes_on},
      {"eta_camera 115: remove_trigger 10", fails(10), cannot},
      {"compare trigger 10 with 10", fails(10), cannot},
      {"compare trigger 10 with 10", fails(10), cannot},
      {"update map 115", fails(10),
       reports("Trigger 10: Failed to remove trigger from object detection map | camera ID 15")},

      // The end of the pass.
      {"subscriptions without {7, 8, 10}", fails_pass, goes_on},
      {"subscription 20: camera_id", fails_pass, cannot},
      {"delete all triggers except {7, 8, 10}", fails_pass, cannot},
      {"delete stale subscriptions", fails_pass, cannot},
      {"delete stale maps", fails_pass, cannot},
      {"reconcile camera 10",
       logs("Failed to reconcile metadata stream for camera 10: it {} failed"), cannot},
      {"reconcile camera 12",
       logs("Failed to reconcile metadata stream for camera 12: it {} failed"), cannot},
      {"reconcile camera 13",
       logs("Failed to reconcile metadata stream for camera 13: it {} failed"), cannot},
      {"reconcile camera 14",
       logs("Failed to reconcile metadata stream for camera 14: it {} failed"), cannot},
      {"reconcile camera 15",
       logs("Failed to reconcile metadata stream for camera 15: it {} failed"), cannot},
      {"reconcile camera 16",
       logs("Failed to reconcile metadata stream for camera 16: it {} failed"), cannot},
      {"subscriptions without {}", fails_pass, goes_on},
      {"subscription 30: camera_id", fails_pass, cannot},
      {"subscription 30: trigger_ids", fails_pass, cannot},
      {"subscription 31: trigger_ids", fails_pass, cannot},
      {"all maps", fails_pass, goes_on},
      {"eta_camera 110: camera_id", fails_pass, cannot},
      {"resolve [\"vehicle\"]", fails_pass, goes_on},
      {"push", fails_pass, cannot},
  };
  return table;
}

/// Without triggers everything is stale.
const Table& the_empty_pass() {
  static const Table table{
      {"parse properties", rejects, cannot},
      {"log Trigger_Parser of severity 1", rejects, cannot},
      {"parse mapping", rejects, cannot},
      {"schedule 2", rejects, goes_on},
      {"parse triggers", rejects, cannot},
      {"server 1", rejects,
       rejects_with("Failed to retrieve server tags due to invalid server ID")},
      {"subscriptions without {}", fails_pass, goes_on},
      {"subscription 30: camera_id", fails_pass, cannot},
      {"delete all triggers", fails_pass, cannot},
      {"delete stale subscriptions", fails_pass, cannot},
      {"delete stale maps", fails_pass, cannot},
      {"reconcile camera 10",
       logs("Failed to reconcile metadata stream for camera 10: it {} failed"), cannot},
      {"subscriptions without {}", fails_pass, goes_on},
      {"subscription 30: camera_id", fails_pass, cannot},
      {"subscription 30: trigger_ids", fails_pass, cannot},
      {"subscription 31: trigger_ids", fails_pass, cannot},
      {"all maps", fails_pass, goes_on},
      {"eta_camera 110: camera_id", fails_pass, cannot},
      {"resolve [\"vehicle\"]", fails_pass, goes_on},
      {"push", fails_pass, cannot},
  };
  return table;
}

// The operations that run a pass, and how each of them says that it failed.

struct Answered {
  bool success = false;
  std::optional<std::vector<Error>> errors;  ///< where the operation tells them
  std::string thrown;                        ///< what it threw, in words
};

bool operator==(const Answered& left, const Answered& right) {
  return left.success == right.success && left.errors == right.errors &&
         left.thrown == right.thrown;
}

std::ostream& operator<<(std::ostream& stream, const Answered& answer) {
  return stream << (answer.success ? "success" : "failure") << " with "
                << testing::PrintToString(answer.errors) << ", thrown: \"" << answer.thrown << '"';
}

struct Operation {
  const char* name;
  Answered (*run)(Trigger_Manager& manager, const Json::Value& config, const Json::Value& mapping);
  Answered (*rejection)(const std::string& text);
  Answered (*failure)(const std::string& text);
  bool stores_config;
  bool stores_mapping;
  bool tells_errors;
  Table calls_before;  ///< those of the pass
};

Answered failed_refresh(const std::string& text) {
  return {
      false, {{failed_processing("Encountered error refreshing the trigger config: " + text)}}, {}};
}

Answered failed_silently(const std::string& /*text*/) {
  return {false, std::nullopt, {}};
}

Answered threw(const std::string& text) {
  return {false, std::nullopt, text};
}

const Row says_it_begins{"log Trigger_Manager of severity 3", fails_pass, cannot};

const Operation operations[] = {
    {"update_config",
     [](Trigger_Manager& manager, const Json::Value& config, const Json::Value&) -> Answered {
       const Result result = manager.update_config(config);
       return {result.success, result.errors, {}};
     },
     [](const std::string& text) -> Answered {
       return {false, {{rejected_document("Failed to parse trigger config: " + text)}}, {}};
     },
     [](const std::string& text) -> Answered {
       return {false, {{failed_processing("Failed to update trigger config: " + text)}}, {}};
     },
     true,
     false,
     true,
     {}},
    {"update_trigger_mapping",
     [](Trigger_Manager& manager, const Json::Value&, const Json::Value& mapping) -> Answered {
       return {true, manager.update_trigger_mapping(mapping).errors, {}};
     },
     threw,
     threw,
     false,
     true,
     true,
     {}},
    {"refresh_triggers",
     [](Trigger_Manager& manager, const Json::Value&, const Json::Value&) -> Answered {
       return {manager.refresh_triggers(), std::nullopt, {}};
     },
     failed_silently,
     failed_silently,
     false,
     false,
     false,
     {says_it_begins}},
    {"refresh_triggers_with_state",
     [](Trigger_Manager& manager, const Json::Value&, const Json::Value&) -> Answered {
       Trigger_Config_State state;
       const bool success = manager.refresh_triggers(state);
       return {success, state.errors, {}};
     },
     failed_refresh,
     failed_refresh,
     false,
     false,
     true,
     {says_it_begins}},
};

/// A pass over the one document or the other.
struct Pass {
  Json::Value config;
  const Table& table;
  Ids applied;
};

const Pass& full_pass() {
  static const Pass pass{Scripted_Site::config, the_full_pass(), {7, 8, 10}};
  return pass;
}

const Pass& empty_pass() {
  static const Pass pass{json(R"({"triggers": []})"), the_empty_pass(), {}};
  return pass;
}

enum class Failure { standard_exception, no_memory, other_exception, error_of_the_family, refusal };

/// What is thrown is no std::exception.
bool is_unheard_of(Failure failure) {
  return failure == Failure::other_exception || failure == Failure::error_of_the_family;
}

using Setting = std::tuple<const Pass*, Operation>;

class Failing_Collaborators : public testing::TestWithParam<Setting> {
 protected:
  Failing_Collaborators() : pass(*std::get<0>(GetParam())), operation(std::get<1>(GetParam())) {
    table = operation.calls_before;
    table.insert(table.end(), pass.table.begin(), pass.table.end());
  }

  /// A manager of its own for each failure.
  void given_a_manager() {
    site.listen({});
    manager = site.a_manager(with(pass.config, "note", R"("stored")"),
                             with(Scripted_Site::mapping, "note", R"("stored")"));
    site.pushed.reset();
    log.emplace();
  }

  /// The failure of the n-th call from here on.
  void given_failure_of_call(std::size_t n, Failure failure) {
    calls.clear();
    site.listen([this, n, failure](const std::string& call) {
      calls.push_back(call);
      if (calls.size() != n + 1) {
        return Answer::by_the_script;
      }
      if (failure == Failure::standard_exception) {
        throw std::runtime_error(thrown_text);
      }
      if (failure == Failure::no_memory) {
        throw std::bad_alloc();
      }
      if (failure == Failure::other_exception) {
        throw 42;
      }
      if (failure == Failure::error_of_the_family) {
        throw Internal_Error<std::exception>();
      }
      return Answer::refused;
    });
  }

  void given_no_failure() { given_failure_of_call(std::size_t(-1), Failure::refusal); }

  Answered when_the_operation_runs() {
    try {
      return operation.run(*manager, with(pass.config, "note", R"("new")"),
                           with(Scripted_Site::mapping, "note", R"("new")"));
    } catch (const std::exception& error) {
      return threw(error.what());
    } catch (int number) {
      return threw("the number " + std::to_string(number));
    } catch (const Internal_Error<std::exception>&) {
      return threw("an error without a text");
    }
  }

  // What is expected.

  Ids applied_but(const Outcome& outcome) const {
    Ids applied = pass.applied;
    if (outcome.kind == Outcome::Kind::fails_trigger || outcome.kind == Outcome::Kind::leaves_out) {
      applied.erase(outcome.trigger);
    }
    return applied;
  }

  static std::vector<std::string> errors_of_triggers(const Outcome& outcome,
                                                     const std::string& text) {
    if (outcome.kind == Outcome::Kind::fails_trigger) {
      return {fmt::format("Trigger {}: Failed to process config ({}).", outcome.trigger, text)};
    }
    if (outcome.kind == Outcome::Kind::is_reported) {
      return {text};
    }
    return {};
  }

  void then_it_is(const Outcome& outcome, const Answered& answer,
                  const char* thrown = thrown_text) {
    const std::string text = outcome.text.empty() ? thrown : with_text(outcome.text, thrown);
    if (outcome.kind == Outcome::Kind::rejects || outcome.kind == Outcome::Kind::fails_pass) {
      const bool rejected = outcome.kind == Outcome::Kind::rejects;
      then_nothing_came_of_it((rejected ? operation.rejection : operation.failure)(text), answer);
      return;
    }
    std::vector<std::string> logged = errors_of_triggers(outcome, text);
    Answered expected{true, std::nullopt, {}};
    if (operation.tells_errors) {
      expected.errors.emplace();
      for (const std::string& error : logged) {
        expected.errors->push_back(failed_processing(error));
      }
    }
    EXPECT_EQ(answer, expected);
    if (outcome.kind == Outcome::Kind::is_logged) {
      logged.push_back(text);
    }
    then_these_errors_were_logged(logged);
    then_the_pusher_knows(applied_but(outcome), errors_of_triggers(outcome, text));
    then_the_documents_are(operation.stores_config ? "new" : "stored",
                           operation.stores_mapping ? "new" : "stored");
  }

  /// Where the table's text holds that of its exception, that of another one.
  static std::string with_text(std::string text, const std::string& thrown) {
    const std::size_t found = text.find(thrown_text);
    return found == std::string::npos ? text : text.replace(found, std::string::npos, thrown);
  }

  void then_nothing_came_of_it(const Answered& expected, const Answered& answer) {
    EXPECT_EQ(answer, expected);
    EXPECT_FALSE(site.pushed.has_value());
    if (expected.errors) {
      then_these_errors_were_logged({expected.errors->front().message});
    } else if (!expected.thrown.empty()) {
      then_these_errors_were_logged({});
    }
    then_the_documents_are("stored", "stored");
  }

  void then_these_errors_were_logged(const std::vector<std::string>& texts) {
    std::vector<Log_Line> expected;
    for (const std::string& text : texts) {
      expected.push_back(error_line(text));
    }
    EXPECT_THAT(log->lines(logging::severity_level::error), ElementsAreArray(expected));
  }

  void then_the_pusher_knows(const Ids& applied, const std::vector<std::string>& errors) {
    ASSERT_TRUE(site.pushed.has_value());
    Ids known;
    for (const auto& [id, options] : site.pushed->applied_triggers) {
      known.insert(id);
      EXPECT_EQ(options.any_time, id == 7);
    }
    EXPECT_EQ(known, applied);
    std::vector<Error> expected;
    for (const std::string& error : errors) {
      expected.push_back(failed_processing(error));
    }
    EXPECT_THAT(site.pushed->errors, ElementsAreArray(expected));
  }

  void then_the_documents_are(const char* config_note, const char* mapping_note) {
    // Read by another thread, which a lock that was kept would hold up for ever.
    const auto documents =
        std::async(std::launch::async, [this] {
          return std::pair(manager->get_config(), manager->get_trigger_mapping());
        }).get();
    EXPECT_EQ(documents.first["note"], config_note);
    EXPECT_EQ(documents.second["note"], mapping_note);
  }

  void then_nothing_is_left_of_the_pass() {
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    EXPECT_EQ(vemora_manager.*open(Working_State()), Trigger_Config_State());
    EXPECT_THAT(vemora_manager.*open(Cameras_To_Reconcile()), testing::IsEmpty());
  }

  /// The same manager then does all that it would have done at first.
  void then_the_next_pass_is_undisturbed() {
    site.pushed.reset();
    log.emplace();
    given_no_failure();
    then_it_is(goes_on, when_the_operation_runs());
    then_every_call_has_its_row();
    EXPECT_EQ(site.pushed, undisturbed);
  }

  void then_every_call_has_its_row() {
    std::vector<std::string> expected;
    for (const Row& row : table) {
      expected.emplace_back(row.call);
    }
    ASSERT_THAT(calls, ElementsAreArray(expected));
  }

  /// What comes of it when each call in turn fails in this way.
  void check_every_call(Failure failure, Outcome (*outcome_of)(const Row& row)) {
    given_a_manager();
    given_no_failure();
    when_the_operation_runs();
    undisturbed = site.pushed;
    int failed_calls = 0;
    for (std::size_t n = 0; n < table.size(); ++n) {
      SCOPED_TRACE(fmt::format("call {}: {}", n, table[n].call));
      const Outcome outcome = outcome_of(table[n]);
      if (outcome.kind == Outcome::Kind::cannot_happen) {
        continue;
      }
      given_a_manager();
      given_failure_of_call(n, failure);
      const Answered answer = when_the_operation_runs();
      ASSERT_GT(calls.size(), n);
      EXPECT_EQ(calls[n], table[n].call);
      if (is_unheard_of(failure) && outcome.kind != Outcome::Kind::goes_on &&
          outcome.kind != Outcome::Kind::leaves_out) {
        EXPECT_EQ(calls.size(), n + 1);  // nobody else was called
        const bool is_number = failure == Failure::other_exception;
        then_nothing_came_of_it(threw(is_number ? "the number 42" : "an error without a text"),
                                answer);
      } else {
        then_it_is(outcome, answer,
                   failure == Failure::no_memory ? std::bad_alloc().what() : thrown_text);
      }
      then_nothing_is_left_of_the_pass();
      then_the_next_pass_is_undisturbed();
      ++failed_calls;
    }
    EXPECT_GT(failed_calls, 0);
  }

  const Pass& pass;
  const Operation operation;
  Table table;
  Scripted_Site site;
  std::optional<Log_Capture> log;
  std::unique_ptr<Trigger_Manager> manager;
  std::vector<std::string> calls;
  std::optional<Trigger_Config_State> undisturbed;
};

TEST_P(Failing_Collaborators, are_all_in_the_table) {
  given_a_manager();
  given_no_failure();

  then_it_is(goes_on, when_the_operation_runs());

  then_every_call_has_its_row();
}

TEST_P(Failing_Collaborators, that_throw_a_standard_exception_cost_what_the_table_says) {
  check_every_call(Failure::standard_exception, [](const Row& row) { return row.when_it_throws; });
}

TEST_P(Failing_Collaborators, that_have_no_memory_cost_the_same) {
  check_every_call(Failure::no_memory, [](const Row& row) { return row.when_it_throws; });
}

// The one place that swallows whatever is thrown is the conversion of source types.
TEST_P(Failing_Collaborators, that_throw_something_else_end_the_pass_with_it) {
  check_every_call(Failure::other_exception, [](const Row& row) { return row.when_it_throws; });
}

// An error of the system's own may be none of the standard ones.
TEST_P(Failing_Collaborators, that_throw_an_error_without_a_text_end_the_pass_with_it) {
  check_every_call(Failure::error_of_the_family, [](const Row& row) { return row.when_it_throws; });
}

TEST_P(Failing_Collaborators, that_refuse_cost_what_the_table_says) {
  check_every_call(Failure::refusal, [](const Row& row) { return row.when_it_refuses; });
}

INSTANTIATE_TEST_SUITE_P(In_A, Failing_Collaborators,
                         testing::Combine(testing::Values(&full_pass(), &empty_pass()),
                                          testing::ValuesIn(operations)),
                         [](const auto& info) {
                           const bool full = std::get<0>(info.param) == &full_pass();
                           return std::string(full ? "full" : "empty") + "_pass_of_" +
                                  std::get<1>(info.param).name;
                         });

}  // namespace
}  // namespace kuv::test
