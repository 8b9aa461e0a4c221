#include "benchmarks/heap_meter.h"

#include <malloc.h>
#include <sqlite3.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> now{0};
std::atomic<std::size_t> peak{0};

void* counted(std::size_t size) {
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  const std::size_t held = now += malloc_usable_size(block);
  if (held > peak) {
    peak = held;
  }
  return block;
}

void give_back(void* block) noexcept {
  if (block != nullptr) {
    now -= malloc_usable_size(block);
    std::free(block);
  }
}

}  // namespace

void* operator new(std::size_t size) {
  return counted(size);
}
void operator delete(void* block) noexcept {
  give_back(block);
}
void operator delete(void* block, std::size_t) noexcept {
  give_back(block);
}

namespace kuv::benchmarks {

std::size_t heap_now() {
  return now + static_cast<std::size_t>(sqlite3_memory_used());
}

std::size_t heap_peak() {
  return peak + static_cast<std::size_t>(sqlite3_memory_highwater(0));
}

void reset_heap_peak() {
  peak = now.load();
  sqlite3_memory_highwater(1);
}

}  // namespace kuv::benchmarks
