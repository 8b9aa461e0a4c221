// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Counts what the process allocates, and lets an allocation fail where the plan says so.

#include <dlfcn.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "plan.h"

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

bool allocation_fails() {
  if (faults::counts == nullptr ||
      !faults::fails(faults::Kind::allocation, faults::counts->allocations)) {
    return false;
  }
  errno = ENOMEM;
  return true;
}

void count_operator_new() {
  if (faults::counts != nullptr) {
    ++faults::counts->by_operator_new;
  }
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  return allocation_fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
  return allocation_fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  return allocation_fails() ? nullptr : __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return allocation_fails() ? nullptr : __libc_memalign(alignment, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
  return allocation_fails() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = allocation_fails() ? nullptr : __libc_memalign(alignment, size);
  return *memory == nullptr ? ENOMEM : 0;
}

}  // extern "C"

// The standard library's own take their memory from malloc, that is, from above.

void* operator new(std::size_t size) {
  count_operator_new();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
  count_operator_new();
  return std::malloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size) {
  return operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t& none) noexcept {
  return operator new(size, none);
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
