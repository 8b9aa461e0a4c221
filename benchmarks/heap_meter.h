#pragma once

#include <cstddef>

namespace kuv::benchmarks {

// What the process has on its heap, counted at every allocation of C++ and of SQLite.

std::size_t heap_now();

/// The most since the last reset.
std::size_t heap_peak();
void reset_heap_peak();

}  // namespace kuv::benchmarks
