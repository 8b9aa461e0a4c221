// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Builds without self-checks do not look: there, the calls of these tests wait for themselves.
#ifndef NDEBUG

#include <optional>
#include <stdexcept>
#include <thread>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/scripted_site.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using Answer = Scripted_Site::Answer;

struct Called_Back {
  const char* name;
  const char* name_of_the_function;
  void (*run)(Trigger_Manager&);
};

void PrintTo(const Called_Back& called, std::ostream* stream) {
  *stream << called.name;
}

const Called_Back all_called_back[] = {
    {"update_config", "update_config",
     [](Trigger_Manager& manager) { manager.update_config(Scripted_Site::config); }},
    {"update_trigger_mapping", "update_trigger_mapping",
     [](Trigger_Manager& manager) { manager.update_trigger_mapping(Scripted_Site::mapping); }},
    {"refresh_triggers", "refresh_triggers",
     [](Trigger_Manager& manager) { manager.refresh_triggers(); }},
    {"refresh_triggers_with_state", "refresh_triggers",
     [](Trigger_Manager& manager) {
       Trigger_Config_State state;
       manager.refresh_triggers(state);
     }},
    {"get_config", "get_config", [](Trigger_Manager& manager) { manager.get_config(); }},
    {"get_trigger_mapping", "get_trigger_mapping",
     [](Trigger_Manager& manager) { manager.get_trigger_mapping(); }},
};

std::string found_out(const Called_Back& called) {
  return std::string(called.name_of_the_function) +
         " was called by what the trigger manager calls during its pass; without the checks of "
         "debug builds it would wait for itself forever";
}

/// What the operation throws when it is found out; empty when it does not throw.
std::string error_of(const Called_Back& called, Trigger_Manager& manager) {
  try {
    called.run(manager);
    return "";
  } catch (const Internal_Error<std::logic_error>& error) {
    EXPECT_EQ(error.error_code, -2);
    return error.what();
  }
}

class Calling_Back : public testing::TestWithParam<Called_Back> {
 protected:
  std::unique_ptr<Trigger_Manager> a_manager() {
    return site.a_manager(Scripted_Site::config, Scripted_Site::mapping);
  }

  /// The collaborators call back in this call; their other calls are as ever.
  void given_a_call_back_in(const std::string& place) {
    site.listen([this, place](const std::string& call) {
      if (call == place) {
        GetParam().run(*manager);
      }
      return Answer::by_the_script;
    });
  }

  Log_Capture log;
  Scripted_Site site;
  std::unique_ptr<Trigger_Manager> manager = a_manager();
};

TEST_P(Calling_Back, is_found_out_in_every_call_of_every_operation) {
  for (const Called_Back& running : all_called_back) {
    std::size_t calls = 0;
    site.listen([&](const std::string& call) {
      ++calls;
      EXPECT_EQ(error_of(GetParam(), *manager), found_out(GetParam())) << running.name << call;
      return Answer::by_the_script;
    });

    running.run(*manager);

    EXPECT_EQ(calls > 0, std::string(running.name).find("get_") != 0) << running.name;
  }
}

TEST_P(Calling_Back, fails_the_pass_if_the_pusher_does_it) {
  given_a_call_back_in("push");

  EXPECT_EQ(
      manager->update_config(Scripted_Site::config),
      (Result{false,
              {failed_processing("Failed to update trigger config: " + found_out(GetParam()))}}));
}

TEST_P(Calling_Back, rejects_the_document_if_the_parser_does_it) {
  given_a_call_back_in("parse triggers");

  EXPECT_EQ(
      manager->update_config(Scripted_Site::config),
      (Result{false,
              {rejected_document("Failed to parse trigger config: " + found_out(GetParam()))}}));
}

TEST_P(Calling_Back, fails_the_trigger_if_the_repository_does_it) {
  given_a_call_back_in("find trigger 8");

  EXPECT_EQ(manager->update_config(Scripted_Site::config),
            (Result{true,
                    {failed_processing("Trigger 8: Failed to process config (" +
                                       found_out(GetParam()) + ").")}}));
}

TEST_P(Calling_Back, costs_the_camera_if_the_capture_manager_does_it) {
  given_a_call_back_in("reconcile camera 12");

  EXPECT_EQ(manager->update_config(Scripted_Site::config), (Result{true, {}}));

  EXPECT_THAT(log.lines(logging::severity_level::error),
              testing::ElementsAre(error_line(
                  "Failed to reconcile metadata stream for camera 12: " + found_out(GetParam()))));
}

TEST_P(Calling_Back, is_found_out_behind_another_manager) {
  const auto other = a_manager();
  std::optional<std::string> error;
  site.listen([&](const std::string& call) {
    if (call != "push") {
      return Answer::by_the_script;
    }
    if (!error) {
      error = "the other manager did not run";
      EXPECT_TRUE(other->refresh_triggers());
    } else {
      error = error_of(GetParam(), *manager);
    }
    return Answer::by_the_script;
  });

  EXPECT_TRUE(manager->refresh_triggers());

  EXPECT_EQ(error, found_out(GetParam()));
}

TEST_P(Calling_Back, leaves_another_manager_free_to_be_called) {
  const auto other = a_manager();
  site.listen([&, inside = false](const std::string& call) mutable {
    if (call == "push" && !inside) {
      inside = true;
      EXPECT_EQ(error_of(GetParam(), *other), "");
    }
    return Answer::by_the_script;
  });

  EXPECT_TRUE(manager->refresh_triggers());
}

TEST_P(Calling_Back, is_forgotten_when_the_operation_is_over) {
  given_a_call_back_in("push");
  EXPECT_FALSE(manager->refresh_triggers());

  site.listen({});

  EXPECT_EQ(error_of(GetParam(), *manager), "");
  EXPECT_TRUE(manager->refresh_triggers());
}

TEST_P(Calling_Back, is_not_what_another_thread_does_meanwhile) {
  std::thread meanwhile;
  std::string error = "it did not run";
  site.listen([&, started = false](const std::string&) mutable {
    if (!started) {
      started = true;
      meanwhile = std::thread([&] { error = error_of(GetParam(), *manager); });
    }
    return Answer::by_the_script;
  });

  EXPECT_TRUE(manager->refresh_triggers());

  meanwhile.join();
  EXPECT_EQ(error, "");
}

INSTANTIATE_TEST_SUITE_P(By, Calling_Back, testing::ValuesIn(all_called_back),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace kuv::test

#endif
