// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/heap_meter.h"

#include <malloc.h>
#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "tools/vemora-triggers/heap/heap.h"

namespace {

std::atomic<bool> counting{false};
std::atomic<std::int64_t> held{0};  ///< since the meter was made; what was there before may go
std::atomic<std::int64_t> most{0};
std::int64_t held_by_sqlite = 0;

void count(std::int64_t bytes) {
  const std::int64_t total = held += bytes;
  if (total > most) {
    most = total;
  }
}

void* allocate(std::size_t size) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  if (counting) {
    count(static_cast<std::int64_t>(malloc_usable_size(block)));
  }
  return block;
}

void give_back(void* block) noexcept {
  if (counting && block != nullptr) {
    count(-static_cast<std::int64_t>(malloc_usable_size(block)));
  }
  std::free(block);
}

std::size_t not_less_than_none(std::int64_t bytes) {
  return static_cast<std::size_t>(std::max<std::int64_t>(bytes, 0));
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void operator delete(void* block) noexcept {
  give_back(block);
}
void operator delete(void* block, std::size_t) noexcept {
  give_back(block);
}

namespace kuv::benchmarks {

Heap_Meter::Heap_Meter() {
  held = 0;
  most = 0;
  held_by_sqlite = sqlite3_memory_used();
  sqlite3_memory_highwater(1);
  counting = true;
}

Heap_Meter::~Heap_Meter() {
  counting = false;
}

std::size_t Heap_Meter::now() const {
  return not_less_than_none(held + sqlite3_memory_used() - held_by_sqlite);
}

std::size_t Heap_Meter::peak() const {
  return not_less_than_none(most + sqlite3_memory_highwater(0) - held_by_sqlite);
}

void settle_heap() {
  vemora::tools::trim_heap();
}

}  // namespace kuv::benchmarks
