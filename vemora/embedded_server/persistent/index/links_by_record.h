// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

namespace kuv::vemora::embedded_server {

/// Takes links trigger by trigger, as the database has them, and answers them record by record.
/// Triggers and records are named by their places in a list.
class Links_By_Record {
 public:
  using Place = std::uint32_t;

  explicit Links_By_Record(std::size_t records) : ends_(records + 1) {}

  void add(std::size_t record, std::size_t trigger) {
    added_.push_back({static_cast<Place>(record), static_cast<Place>(trigger)});
    ++ends_[record + 1];
  }

  /// To be called when all were added.
  void complete() {
    std::partial_sum(ends_.begin(), ends_.end(), ends_.begin());
    triggers_.resize(added_.size());
    for (const Link& link : added_) {
      triggers_[ends_[link.record]++] = link.trigger;
    }
    std::vector<Link>().swap(added_);
  }

  /// Calls for each trigger of that record, in the order in which they were added.
  template <class Take>
  void for_each_trigger(std::size_t record, Take take) const {
    for (std::size_t at = record == 0 ? 0 : ends_[record - 1]; at < ends_[record]; ++at) {
      take(triggers_[at]);
    }
  }

 private:
  struct Link {
    Place record;
    Place trigger;
  };

  std::vector<Link> added_;
  std::vector<std::size_t> ends_;  ///< when complete, where the triggers of each record end
  std::vector<Place> triggers_;    ///< of one record after the other
};

}  // namespace kuv::vemora::embedded_server
