// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <set>
#include <stdexcept>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/scripted_site.h"
#include "vemora/platform/errors/vemora_error.h"

// A manager takes null pointers for its collaborators. The passes here use every one of them, and
// the table says what comes of it when one is missing.

namespace kuv::test {
namespace {

using testing::IsEmpty;

/// What comes of a missing collaborator.
enum class Cost {
  nothing,     ///< no pass needs it
  is_logged,   ///< for each camera whose stream was to be reconciled
  fails_some,  ///< of the triggers, which are reported; the pass goes on
  rejects,     ///< the document that is read with it
  fails_pass,  ///< all of it
};

struct Missing {
  std::string name;
  Cost cost;
  std::string text;
};

void PrintTo(const Missing& missing, std::ostream* stream) {
  *stream << missing.name;
}

const Missing every_one[] = {
    {"parser", Cost::rejects, "The trigger manager was constructed without a parser"},
    {"repository of the parser", Cost::rejects,
     "The trigger parser was constructed without a repository"},
    {"schedule repository", Cost::rejects,
     "The repository was constructed without a schedule repository"},
    {"server repository", Cost::rejects,
     "The repository was constructed without a server repository"},
    {"repository", Cost::fails_pass, "The trigger manager was constructed without a repository"},
    {"trigger repository", Cost::fails_pass,
     "The repository was constructed without a trigger repository"},
    {"camera repository", Cost::fails_some,
     "The repository was constructed without a camera repository"},
    {"metadata event subscription repository", Cost::fails_pass,
     "The repository was constructed without a metadata event subscription repository"},
    {"ETA camera repository", Cost::fails_pass,
     "The repository was constructed without an ETA camera repository"},
    {"metadata event category repository", Cost::nothing, ""},
    {"capture manager", Cost::is_logged,
     "The trigger manager was constructed without a capture manager"},
    {"meta type resolver", Cost::fails_pass,
     "The trigger manager was constructed without a meta type resolver"},
    {"notification pusher", Cost::fails_pass,
     "The trigger manager was constructed without a notification pusher"},
};

Json::Value named(Json::Value document, const char* note) {
  document["note"] = note;
  return document;
}

class Missing_Collaborator : public testing::TestWithParam<Missing> {
 protected:
  bool fails() const {
    return GetParam().cost == Cost::rejects || GetParam().cost == Cost::fails_pass;
  }

  /// Those of a pass that ran to its end.
  std::vector<Error> errors_of_triggers() const {
    std::vector<Error> errors;
    if (GetParam().cost == Cost::fails_some) {
      for (const int trigger : {7, 10}) {  // the ones with a camera filter or a topic
        errors.push_back(failed_processing(
            fmt::format("Trigger {}: Failed to process config ({}).", trigger, GetParam().text)));
      }
    }
    return errors;
  }

  std::vector<Error> errors_of_refresh() const {
    return fails() ? std::vector<Error>{failed_processing(
                         "Encountered error refreshing the trigger config: " + GetParam().text)}
                   : errors_of_triggers();
  }

  std::vector<std::string> calls_of_a_refresh(Trigger_Manager& of) {
    std::vector<std::string> calls;
    site.listen([&calls](const std::string& call) {
      calls.push_back(call);
      return Scripted_Site::Answer::by_the_script;
    });
    of.refresh_triggers();
    site.listen({});
    return calls;
  }

  void then_the_documents_are(const Json::Value& config, const Json::Value& mapping) {
    EXPECT_EQ(manager->get_config(), config);
    EXPECT_EQ(manager->get_trigger_mapping(), mapping);
  }

  void then_the_pusher_heard_of_a_pass(bool whole) { EXPECT_EQ(site.pushed.has_value(), whole); }

  const Json::Value stored_config = named(Scripted_Site::config, "stored");
  const Json::Value stored_mapping = named(Scripted_Site::mapping, "stored");
  const Json::Value new_config = named(Scripted_Site::config, "new");
  const Json::Value new_mapping = named(Scripted_Site::mapping, "new");
  Log_Capture log;
  Scripted_Site site;
  std::unique_ptr<Trigger_Manager> manager =
      site.a_manager(stored_config, stored_mapping, {GetParam().name});
};

TEST_P(Missing_Collaborator, is_named_by_update_config) {
  const Result result = manager->update_config(new_config);

  if (GetParam().cost == Cost::rejects) {
    EXPECT_EQ(
        result,
        (Result{false, {rejected_document("Failed to parse trigger config: " + GetParam().text)}}));
  } else if (GetParam().cost == Cost::fails_pass) {
    EXPECT_EQ(result,
              (Result{false,
                      {failed_processing("Failed to update trigger config: " + GetParam().text)}}));
  } else {
    EXPECT_EQ(result, (Result{true, errors_of_triggers()}));
  }
  then_the_documents_are(fails() ? stored_config : new_config, stored_mapping);
  then_the_pusher_heard_of_a_pass(!fails());
}

TEST_P(Missing_Collaborator, is_named_by_a_refresh_that_tells_its_errors) {
  Trigger_Config_State state;

  EXPECT_EQ(manager->refresh_triggers(state), !fails());

  EXPECT_EQ(state.errors, errors_of_refresh());
  then_the_documents_are(stored_config, stored_mapping);
  then_the_pusher_heard_of_a_pass(!fails());
}

TEST_P(Missing_Collaborator, is_named_in_the_log_of_a_refresh) {
  EXPECT_EQ(manager->refresh_triggers(), !fails());

  for (const Error& error : errors_of_refresh()) {
    EXPECT_THAT(log.lines(), testing::Contains(error_line(error.message)));
  }
  then_the_documents_are(stored_config, stored_mapping);
  then_the_pusher_heard_of_a_pass(!fails());
}

TEST_P(Missing_Collaborator, is_named_by_the_error_that_update_trigger_mapping_throws) {
  std::optional<std::string> thrown;
  std::vector<Error> errors;
  try {
    errors = manager->update_trigger_mapping(new_mapping).errors;
  } catch (const Internal_Error<std::logic_error>& error) {
    EXPECT_EQ(error.error_code, -2);
    thrown = error.what();
  }

  EXPECT_EQ(thrown, fails() ? std::make_optional(GetParam().text) : std::nullopt);
  EXPECT_EQ(errors, errors_of_triggers());
  then_the_documents_are(stored_config, fails() ? stored_mapping : new_mapping);
  then_the_pusher_heard_of_a_pass(!fails());
}

TEST_P(Missing_Collaborator, is_missed_in_each_pass_anew) {
  Trigger_Config_State first;
  manager->refresh_triggers(first);
  Trigger_Config_State second;
  manager->refresh_triggers(second);

  EXPECT_EQ(second.errors, first.errors);
  EXPECT_EQ(second.applied_triggers.size(), first.applied_triggers.size());
}

TEST_P(Missing_Collaborator, changes_no_call_before_it_is_needed) {
  const std::vector<std::string> calls = calls_of_a_refresh(*manager);
  const auto manager_with_all = site.a_manager(stored_config, stored_mapping);
  const std::vector<std::string> calls_with_all = calls_of_a_refresh(*manager_with_all);

  const auto [missed, there] =
      std::mismatch(calls.begin(), calls.end(), calls_with_all.begin(), calls_with_all.end());
  if (GetParam().cost == Cost::nothing) {
    EXPECT_EQ(calls, calls_with_all);
  } else if (missed != calls.end()) {
    EXPECT_EQ(*missed, "log Trigger_Manager of severity 5") << "in place of " << *there;
  } else {
    FAIL() << "nobody logged it";
  }
}

INSTANTIATE_TEST_SUITE_P(Of, Missing_Collaborator, testing::ValuesIn(every_one),
                         [](const auto& info) {
                           std::string name = info.param.name;
                           std::replace(name.begin(), name.end(), ' ', '_');
                           return name;
                         });

class Collaborators_That_No_Pass_Needs : public testing::Test {
 protected:
  Log_Capture log;
  Scripted_Site site;
};

TEST_F(Collaborators_That_No_Pass_Needs, are_not_asked_for_by_readers) {
  const auto manager = site.a_manager(
      Scripted_Site::config, Scripted_Site::mapping,
      {"parser", "repository", "capture manager", "notification pusher", "meta type resolver"});

  EXPECT_EQ(manager->get_config(), Scripted_Site::config);
  EXPECT_EQ(manager->get_trigger_mapping(), Scripted_Site::mapping);
}

TEST_F(Collaborators_That_No_Pass_Needs, may_be_missing_where_a_pass_has_nothing_for_them) {
  // No camera changes, nothing is searched for, no schedule is named, no camera selected.
  site.listen([](const std::string& call) {
    return call == "subscriptions without {}" || call == "all maps"
               ? Scripted_Site::Answer::refused
               : Scripted_Site::Answer::by_the_script;
  });
  const auto manager =
      site.a_manager(json(R"({"triggers": []})"), json(R"({"triggerMapping": []})"),
                     {"capture manager", "meta type resolver", "camera repository",
                      "schedule repository", "metadata event category repository"});
  Trigger_Config_State state;

  EXPECT_TRUE(manager->refresh_triggers(state));

  EXPECT_THAT(state.errors, IsEmpty());
  EXPECT_TRUE(site.pushed.has_value());
}

TEST_F(Collaborators_That_No_Pass_Needs, cost_only_the_streams_if_it_is_the_capture_manager) {
  const auto manager =
      site.a_manager(Scripted_Site::config, Scripted_Site::mapping, {"capture manager"});

  EXPECT_TRUE(manager->refresh_triggers());

  std::vector<Log_Line> expected;
  for (const int camera : {10, 12, 13, 14, 15, 16}) {
    expected.push_back(error_line(fmt::format(
        "Failed to reconcile metadata stream for camera {}: The trigger manager was constructed "
        "without a capture manager",
        camera)));
  }
  EXPECT_EQ(log.lines(logging::severity_level::error), expected);
}

}  // namespace
}  // namespace kuv::test
