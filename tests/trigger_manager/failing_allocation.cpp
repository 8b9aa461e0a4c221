// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int never = -1;

thread_local int successes_left = never;
thread_local bool has_failed = false;

void* allocate(std::size_t size) {
  if (successes_left != never && successes_left-- == 0) {
    has_failed = true;
    return nullptr;
  }
  return std::malloc(size == 0 ? 1 : size);
}

}  // namespace

namespace kuv::test {

void fail_allocation_after(int successes) {
  successes_left = successes;
  has_failed = false;
}

bool allocation_has_failed() {
  successes_left = never;
  return has_failed;
}

}  // namespace kuv::test

// Where the compiler can see into one of them, it takes the others for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* const memory = allocate(size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
