// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vemora/embedded_server/persistent/index/id_order.h"

namespace kuv::vemora::embedded_server {

/// The records that hold one trigger, in slots ascending by record id: a record that lets go leaves
/// its slot empty, and fills it again when it comes back. So a trigger leaves many records, and
/// joins them again, without anything being moved for each of them.
template <class Entry>
class Holder_List {
  struct Slot {
    std::uint64_t record_id;
    Entry* entry;  ///< null in an empty slot
  };

 public:
  /// For what is read from the database, in whatever order; complete() must follow.
  void append(std::uint64_t record_id, Entry* entry) { slots_.push_back({record_id, entry}); }
  void complete() {
    sort_by(slots_, [](const Slot& slot) { return slot.record_id; });
  }

  /// False where the record is a holder already.
  bool add(std::uint64_t record_id, Entry* entry) {
    const auto slot = find(slots_, record_id);
    if (slot == slots_.end() || slot->record_id != record_id) {
      slots_.insert(slot, {record_id, entry});
      return true;
    }
    const bool was_empty = slot->entry == nullptr;
    slot->entry = entry;
    return was_empty;
  }

  /// False where the record is no holder.
  bool remove(std::uint64_t record_id) {
    const auto slot = find(slots_, record_id);
    if (slot == slots_.end() || slot->record_id != record_id || slot->entry == nullptr) {
      return false;
    }
    slot->entry = nullptr;
    return true;
  }

  bool contains(std::uint64_t record_id) const { return Walk(*this).contains(record_id); }

  /// Asks for one record after the other. One that comes behind the last one that was found costs
  /// no search. Good until the list changes.
  class Walk {
   public:
    explicit Walk(const Holder_List& list) : slots_(list.slots_), next_(slots_.begin()) {}

    bool contains(std::uint64_t record_id) {
      if (next_ == slots_.end() || next_->record_id != record_id) {
        next_ = find(slots_, record_id);
      }
      if (next_ == slots_.end() || next_->record_id != record_id) {
        return false;
      }
      return (next_++)->entry != nullptr;
    }

   private:
    const std::vector<Slot>& slots_;
    typename std::vector<Slot>::const_iterator next_;
  };

  /// Ascending by record id.
  std::vector<Entry*> entries() const {
    std::vector<Entry*> entries;
    entries.reserve(slots_.size());
    for (const Slot& slot : slots_) {
      if (slot.entry != nullptr) {
        entries.push_back(slot.entry);
      }
    }
    return entries;
  }

 private:
  /// The slot of that record, or the one that it belongs before. Records mostly come in the order
  /// of their ids.
  template <class Slots>
  static auto find(Slots& slots, std::uint64_t record_id) {
    if (slots.empty() || slots.back().record_id < record_id) {
      return slots.end();
    }
    return std::lower_bound(
        slots.begin(), slots.end(), record_id,
        [](const Slot& slot, std::uint64_t wanted) { return slot.record_id < wanted; });
  }

  std::vector<Slot> slots_;
};

}  // namespace kuv::vemora::embedded_server
