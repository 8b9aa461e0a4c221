// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Gives out ids of one kind of record: never one that is taken, and as long as there are enough,
/// none that was given out in a pass that wrote something. Where a pass was rolled back, or came to
/// nothing, its ids are given out again.
class Id_Allocator {
 public:
  /// Goes on where `stored` says; at 1 where nothing is stored yet.
  explicit Id_Allocator(std::string kind, std::optional<std::uint64_t> stored = std::nullopt)
      : kind_(std::move(kind)), stored_(stored), next_(stored.value_or(1)) {}

  static Id_Allocator load(odb::database& database, const std::string& kind);

  /// `is_taken` says of an id whether a record has it.
  template <class Is_Taken>
  std::uint64_t allocate(Is_Taken is_taken) {
    while (is_taken(next_)) {
      ++next_;
    }
    return next_++;
  }

  /// Writes where to go on, if any were given out.
  void save(odb::database& database);

 private:
  std::string kind_;
  std::optional<std::uint64_t> stored_;
  std::uint64_t next_;
};

}  // namespace kuv::vemora::embedded_server
