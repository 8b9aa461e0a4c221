// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <dlfcn.h>
#include <pthread.h>

#include <boost/thread/exceptions.hpp>
#include <cerrno>

#include "trigger_manager/manager_test.h"

// The operating system can run out of what locks are made of. The two functions stand in front of
// the C library's, which they call unless they are to fail.

namespace {

/// Initialisations that still succeed; negative: all of them.
thread_local int initialisations_left = -1;

bool fails_now() {
  return initialisations_left >= 0 && initialisations_left-- == 0;
}

template <class Function>
Function* of_the_c_library(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int pthread_mutex_init(pthread_mutex_t* mutex,
                                  const pthread_mutexattr_t* attributes) noexcept {
  static auto* const init = of_the_c_library<decltype(pthread_mutex_init)>("pthread_mutex_init");
  return fails_now() ? EAGAIN : init(mutex, attributes);
}

extern "C" int pthread_cond_init(pthread_cond_t* condition,
                                 const pthread_condattr_t* attributes) noexcept {
  static auto* const init = of_the_c_library<decltype(pthread_cond_init)>("pthread_cond_init");
  return fails_now() ? EAGAIN : init(condition, attributes);
}

namespace kuv::test {
namespace {

/// Tries to build a manager when so many primitives can still be had; whether there is one.
bool can_be_built_with(int primitives, const std::shared_ptr<Repository>& repository) {
  initialisations_left = primitives;
  try {
    const Vemora_Trigger_Manager manager(stored_config, stored_mapping, repository, nullptr,
                                         nullptr, nullptr, nullptr);
    initialisations_left = -1;
    return true;
  } catch (const boost::thread_resource_error&) {
    initialisations_left = -1;
    return false;
  }
}

TEST(Manager_Without_A_Lock, does_not_exist_and_says_what_there_was_too_little_of) {
  const Mock_Repository database;
  int primitives = 0;
  while (!can_be_built_with(primitives, database.repository)) {
    EXPECT_EQ(database.repository.use_count(), 1);
    ++primitives;
  }
  // A mutex and three conditions for the manager's lock alone.
  EXPECT_GE(primitives, 4);
}

}  // namespace
}  // namespace kuv::test
