// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>

namespace kuv::benchmarks {

/// Counts what the process holds on its heap, at every allocation of C++ and of SQLite, as long as
/// the object lives: one at a time. Counting takes time, so nothing is timed meanwhile.
class Heap_Meter {
 public:
  Heap_Meter();
  ~Heap_Meter();
  Heap_Meter(const Heap_Meter&) = delete;
  Heap_Meter& operator=(const Heap_Meter&) = delete;

  /// In bytes above what was there when the meter was made.
  std::size_t now() const;
  /// The most so far.
  std::size_t peak() const;
};

/// Lets go of all that was freed. To be called before whatever is timed, so that nobody pays for
/// what ran before.
void settle_heap();

}  // namespace kuv::benchmarks
