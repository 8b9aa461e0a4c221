// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <atomic>

namespace faults {

/// What goes wrong in a run. Nothing does outside of one.
enum class Kind : int { none, allocation, file };

struct Plan {
  Kind kind = Kind::none;
  long at = 0;            ///< which call fails, counted from 1 at the start of main; 0: none
  bool for_good = false;  ///< and every one after it
  int error = 0;          ///< what a failing call on a file sets errno to
};

/// What a run came to, in memory that the server shares with it.
struct Counts {
  std::atomic<long> allocations;
  std::atomic<long> by_operator_new;  ///< of the allocations
  std::atomic<long> file_calls;
  std::atomic<long> failed;
};

extern Plan plan;
extern Counts* counts;  ///< null outside of a run

/// Whether the call that `counter` counts is to fail; counts it.
bool fails(Kind kind, std::atomic<long>& counter);

}  // namespace faults
