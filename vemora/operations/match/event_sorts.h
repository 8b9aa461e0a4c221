// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "vemora/operations/match/listeners.h"
#include "vemora/operations/match/match.h"

namespace kuv::vemora::operations {

/// How many events of each sort there were. Only sorts that some trigger might be told of have a
/// count, so that there are no more of them than records and types searched for.
class Event_Sorts {
 public:
  /// What any of the listeners might be told of is counted; they must outlive the counts.
  explicit Event_Sorts(std::vector<const Listeners*> listeners)
      : listeners_(std::move(listeners)) {}

  /// False where no trigger can be told of it.
  bool count(const Event& event);

  /// Calls `take` with an event of each sort, and their number.
  void for_each(const std::function<void(const Event&, std::uint64_t)>& take) const;

 private:
  using Count = std::uint64_t;

  std::vector<const Listeners*> listeners_;
  std::map<std::uint64_t, std::map<std::string, Count>> topics_;
  std::map<std::uint64_t, std::map<std::string, std::array<Count, 2>>> objects_;
  std::map<std::uint64_t, Count> motion_;
  std::map<std::uint64_t, Count> generic_;
};

/// Adds the events that were counted to what the triggers are told of.
void add_counts(const Event_Sorts& sorts, const Listeners& listeners, Event_Counts& counts);

}  // namespace kuv::vemora::operations
