#include <cstdlib>
#include <new>

#include "component/manager_test.h"
#include "component/private_access.h"
#include "component/scripted_site.h"

// What is stored after the last call of a pass can fail for want of memory alone.

namespace {

thread_local bool next_allocation_fails = false;

}  // namespace

void* operator new(std::size_t size) {
  if (next_allocation_fails) {
    next_allocation_fails = false;
    throw std::bad_alloc();
  }
  void* memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Answer = Scripted_Site::Answer;

class Storing_A_Document : public testing::Test {
 protected:
  void given_no_memory_once_the_pusher_was_told() {
    site.listen([](const std::string& call) {
      next_allocation_fails = call == "push";
      return Answer::by_the_script;
    });
  }

  void then_the_documents_are_the_old_ones() {
    EXPECT_FALSE(next_allocation_fails);  // it did fail
    EXPECT_TRUE(site.pushed.has_value());
    EXPECT_EQ(manager->get_config(), stored_config);
    EXPECT_EQ(manager->get_trigger_mapping(), stored_mapping);
    auto& vemora_manager = dynamic_cast<Vemora_Trigger_Manager&>(*manager);
    EXPECT_EQ(vemora_manager.*open(Working_State()), Trigger_Config_State());
    EXPECT_THAT(vemora_manager.*open(Cameras_To_Reconcile()), IsEmpty());
  }

  Log_Capture log;
  Scripted_Site site;
  std::unique_ptr<Trigger_Manager> manager = site.a_manager(stored_config, stored_mapping);
};

TEST_F(Storing_A_Document, that_fails_fails_the_update_of_the_configuration) {
  given_no_memory_once_the_pusher_was_told();

  const Result result = manager->update_config(new_config);

  const std::string text = "Failed to update trigger config: std::bad_alloc";
  EXPECT_EQ(result, (Result{false, {failed_processing(text)}}));
  EXPECT_THAT(log.lines(logging::severity_level::error), ElementsAre(error_line(text)));
  then_the_documents_are_the_old_ones();
}

TEST_F(Storing_A_Document, that_fails_throws_from_the_update_of_the_mapping) {
  given_no_memory_once_the_pusher_was_told();

  EXPECT_THROW(manager->update_trigger_mapping(new_mapping), std::bad_alloc);

  EXPECT_THAT(log.lines(logging::severity_level::error), IsEmpty());
  then_the_documents_are_the_old_ones();
}

}  // namespace
}  // namespace kuv::test
