// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <new>

#include "trigger_manager/failing_allocation.h"
#include "trigger_manager/manager_test.h"
#include "trigger_manager/private_access.h"
#include "trigger_manager/scripted_site.h"

namespace kuv::test {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;
using Answer = Scripted_Site::Answer;

class Out_Of_Memory : public testing::Test {
 protected:
  // What is stored after the last call of a pass can fail for want of memory alone.
  void given_no_memory_once_the_pusher_was_told() {
    site.listen([](const std::string& call) {
      if (call == "push") {
        fail_allocation_after(0);
      }
      return Answer::by_the_script;
    });
  }

  void then_the_documents_are_the_old_ones() {
    EXPECT_TRUE(site.pushed.has_value());
    EXPECT_EQ(manager->get_config(), stored_config);
    EXPECT_EQ(manager->get_trigger_mapping(), stored_mapping);
    then_nothing_is_left_of_the_pass();
  }

  void then_nothing_is_left_of_the_pass() {
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    EXPECT_EQ(vemora_manager.*open(Working_State()), Trigger_Config_State());
    EXPECT_THAT(vemora_manager.*open(Cameras_To_Reconcile()), IsEmpty());
  }

  Log_Capture log;
  Scripted_Site site;
  std::unique_ptr<Trigger_Manager> manager = site.a_manager(stored_config, stored_mapping);
};

TEST_F(Out_Of_Memory, an_update_of_the_configuration_that_cannot_store_it_fails) {
  given_no_memory_once_the_pusher_was_told();

  const Result result = manager->update_config(new_config);

  EXPECT_TRUE(allocation_has_failed());
  const std::string text = "Failed to update trigger config: std::bad_alloc";
  EXPECT_EQ(result, (Result{false, {failed_processing(text)}}));
  EXPECT_THAT(log.lines(logging::severity_level::error), ElementsAre(error_line(text)));
  then_the_documents_are_the_old_ones();
}

TEST_F(Out_Of_Memory, an_update_of_the_mapping_that_cannot_store_it_throws) {
  given_no_memory_once_the_pusher_was_told();

  EXPECT_THROW(manager->update_trigger_mapping(new_mapping), std::bad_alloc);

  EXPECT_TRUE(allocation_has_failed());
  EXPECT_THAT(log.lines(logging::severity_level::error), IsEmpty());
  then_the_documents_are_the_old_ones();
}

TEST_F(Out_Of_Memory, a_refresh_that_cannot_copy_what_the_pusher_was_told_fails) {
  manager = site.a_manager(Scripted_Site::config, Scripted_Site::mapping);
  given_no_memory_once_the_pusher_was_told();
  Trigger_Config_State state;

  EXPECT_FALSE(manager->refresh_triggers(state));

  EXPECT_TRUE(allocation_has_failed());
  EXPECT_TRUE(site.pushed.has_value());
  const std::string text = "Encountered error refreshing the trigger config: std::bad_alloc";
  EXPECT_THAT(state.errors, ElementsAre(failed_processing(text)));
  EXPECT_THAT(log.lines(logging::severity_level::error), ElementsAre(error_line(text)));
  then_nothing_is_left_of_the_pass();
}

TEST_F(Out_Of_Memory, a_refresh_whose_caller_takes_no_state_copies_none) {
  manager = site.a_manager(Scripted_Site::config, Scripted_Site::mapping);
  given_no_memory_once_the_pusher_was_told();

  EXPECT_TRUE(manager->refresh_triggers());

  EXPECT_FALSE(allocation_has_failed());
  EXPECT_THAT(site.pushed->applied_triggers, SizeIs(3));
  then_nothing_is_left_of_the_pass();
}

TEST_F(Out_Of_Memory, an_update_of_the_configuration_answers_wherever_it_happens) {
  manager = site.a_manager(Scripted_Site::config, Scripted_Site::mapping);
  const Error rejected = rejected_document("Failed to parse trigger config: std::bad_alloc");
  const Error failed = failed_processing("Failed to update trigger config: std::bad_alloc");
  int failures = 0;
  bool out_of_memory = true;
  for (int successes = 0; out_of_memory; ++successes) {
    SCOPED_TRACE(successes);
    const Json::Value before = manager->get_config();
    const Json::Value config = with(Scripted_Site::config, "note", std::to_string(successes));

    fail_allocation_after(successes);
    const Result result = manager->update_config(config);
    out_of_memory = allocation_has_failed();

    if (result.success) {
      EXPECT_THAT(result.errors, SizeIs(Le(1)));
      for (const Error& error : result.errors) {
        EXPECT_THAT(error.message, HasSubstr(": Failed to process config (std::bad_alloc)."));
      }
    } else {
      EXPECT_THAT(result.errors, SizeIs(1));
      EXPECT_THAT(result.errors, Each(AnyOf(rejected, failed)));
      ++failures;
    }
    EXPECT_EQ(manager->get_config(), result.success ? config : before);
    then_nothing_is_left_of_the_pass();
  }
  // The last round had all that it needed.
  EXPECT_THAT(site.pushed->applied_triggers, SizeIs(3));
  EXPECT_THAT(site.pushed->errors, IsEmpty());
  EXPECT_GT(failures, 100);
}

}  // namespace
}  // namespace kuv::test
