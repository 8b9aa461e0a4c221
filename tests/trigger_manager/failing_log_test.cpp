// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <functional>
#include <new>
#include <stdexcept>

#include "trigger_manager/failing_allocation.h"
#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"
#include "trigger_manager/scripted_site.h"
#include "vemora/platform/errors/vemora_error.h"

// What an operation answers when the log fails in which it wanted to say what failed.

namespace kuv::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

/// While it lives, lines of severity "error" end with what `fail` throws.
class Failing_Log {
 public:
  explicit Failing_Log(std::function<void()> fail) {
    boost::log::core::get()->set_filter([fail](const boost::log::attribute_value_set& values) {
      if (*boost::log::extract<logging::severity_level>("Severity", values) ==
          logging::severity_level::error) {
        fail();
      }
      return true;
    });
  }
  ~Failing_Log() { boost::log::core::get()->reset_filter(); }
  Failing_Log(const Failing_Log&) = delete;
  Failing_Log& operator=(const Failing_Log&) = delete;
};

void fail_always() {
  throw std::runtime_error("the log is full");
}

/// The first line fails, and no other.
std::function<void()> fail_once() {
  return [failed = std::make_shared<bool>(false)] {
    if (!*failed) {
      *failed = true;
      throw std::runtime_error("the log is full");
    }
  };
}

class Failing_Log_Test : public Manager_Test {
 protected:
  void expect_parsing_to_fail(const Json::Value& config) {
    EXPECT_CALL(*parser, parse_config_properties(config))
        .WillOnce(Throw(std::runtime_error("no document")));
  }

  void expect_the_pusher_to_fail() {
    expect_nothing_stale({});
    expect_clean_up({});
    EXPECT_CALL(database.subscriptions, get_stale(_)).WillOnce(Return(Subscriptions()));
    EXPECT_CALL(database.eta_cameras, get_all()).WillOnce(Return(ETA_Records()));
    EXPECT_CALL(*pusher, apply_trigger_state(_)).WillOnce(Throw(std::runtime_error("no route")));
  }
};

TEST_F(Failing_Log_Test, keeps_no_rejected_document_from_being_answered) {
  const Failing_Log failing(fail_always);
  expect_parsing_to_fail(new_config);

  when_the_configuration_is_updated();

  EXPECT_EQ(result,
            (Result{false, {rejected_document("Failed to parse trigger config: no document")}}));
}

TEST_F(Failing_Log_Test, keeps_no_failed_pass_from_being_answered) {
  const Failing_Log failing(fail_always);
  expect_parsing({});
  expect_the_pusher_to_fail();

  when_the_configuration_is_updated();

  EXPECT_EQ(result,
            (Result{false, {failed_processing("Failed to update trigger config: no route")}}));
  EXPECT_EQ(manager->get_config(), stored_config);
}

TEST_F(Failing_Log_Test, keeps_no_failed_refresh_from_being_answered) {
  const Failing_Log failing(fail_always);
  expect_parsing_to_fail(stored_config);
  expect_parsing_to_fail(stored_config);
  Trigger_Config_State state;

  EXPECT_FALSE(manager->refresh_triggers());
  EXPECT_FALSE(manager->refresh_triggers(state));

  EXPECT_THAT(state.errors, ElementsAre(failed_processing(
                                "Encountered error refreshing the trigger config: no document")));
}

TEST_F(Failing_Log_Test, is_let_through_with_what_is_no_standard_exception) {
  const Failing_Log failing([] { throw 42; });
  expect_parsing_to_fail(new_config);
  expect_parsing_to_fail(stored_config);

  EXPECT_THROW(manager->update_config(new_config), int);
  EXPECT_THROW(manager->refresh_triggers(), int);
}

// In the middle of a pass the log is one more thing that the pass needs.

TEST_F(Failing_Log_Test, fails_the_pass_in_which_a_trigger_failed) {
  const Failing_Log failing(fail_once());
  expect_parsing({an_active_trigger(7)});
  EXPECT_CALL(database.triggers, find_by_id(7)).WillOnce(Throw(std::runtime_error("locked")));

  when_the_configuration_is_updated();

  const std::string text = "Failed to update trigger config: the log is full";
  EXPECT_EQ(result, (Result{false, {failed_processing(text)}}));
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
}

TEST_F(Failing_Log_Test, fails_the_pass_in_which_a_stream_could_not_be_reconciled) {
  const Failing_Log failing(fail_once());
  expect_parsing({});
  EXPECT_CALL(database.subscriptions, get_stale(_))
      .WillOnce(Return(Subscriptions{a_topic_subscription(3, a_camera(10), "a")}));
  expect_clean_up({});
  EXPECT_CALL(*capture_manager, reconcile_metadata_stream(10))
      .WillOnce(Throw(std::runtime_error("timed out")));

  when_the_configuration_is_updated();

  EXPECT_EQ(
      result,
      (Result{false, {failed_processing("Failed to update trigger config: the log is full")}}));
}

// An error is logged first and noted then, so that none is answered that was never logged.

TEST_F(Failing_Log_Test, leaves_no_error_that_was_noted_and_not_logged) {
  const Failing_Log failing(fail_once());
  const Trigger_Config config = an_inactive_trigger(7);
  const Trigger_Record record = stored(config);
  expect_parsing({config});
  expect_lookup(7, record);
  EXPECT_CALL(database.subscriptions, Get_Matching_Subscriptions(_))
      .WillOnce(Return(Subscriptions{a_generic_subscription(3, {record})}));
  EXPECT_CALL(database.subscriptions, update(_)).WillOnce(Return(false));
  expect_end({});

  when_the_configuration_is_updated();

  const std::string text = "Trigger 7: Failed to process config (the log is full).";
  then_it_succeeds_with({failed_processing(text)});
  EXPECT_THAT(log.lines(), ElementsAre(error_line(text)));
}

TEST(Failing_Refresh, logs_its_error_before_it_notes_it) {
  Scripted_Site site;
  const auto manager = site.a_manager(stored_config, stored_mapping);
  int logged_and_not_noted = 0;
  bool out_of_memory = true;
  for (int successes = 0; out_of_memory; ++successes) {
    const Log_Capture log;
    site.listen([successes](const std::string& call) {
      if (call == "push") {
        fail_allocation_after(successes);
        throw std::bad_function_call();
      }
      return Scripted_Site::Answer::by_the_script;
    });
    bool answered = true;
    try {
      manager->refresh_triggers();
    } catch (const std::bad_alloc&) {
      answered = false;
    }
    out_of_memory = allocation_has_failed();
    const bool logged = !log.lines(logging::severity_level::error).empty();
    logged_and_not_noted += logged && !answered ? 1 : 0;
  }
  EXPECT_EQ(logged_and_not_noted, 1);
}

}  // namespace
}  // namespace kuv::test
