// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// Looks for the name that was probably meant, among names that are offered to it one by one: the
/// one that differs least, by a letter in three at most, or that has the wrong one in it.
class VEMORA_API Nearest_Name {
 public:
  /// The name that is known to be wrong; it is not copied.
  explicit Nearest_Name(std::string_view wrong) : wrong_(wrong) {}

  /// Returns how many letters it compared.
  std::size_t offer(std::string_view name);

  /// Empty when none comes near.
  std::string_view found() const { return nearest_; }

 private:
  std::string_view wrong_;
  std::string_view nearest_;
  std::size_t distance_ = static_cast<std::size_t>(-1);
};

/// How many letters may be compared in all, where there may be thousands of names, and thousands to
/// be found: as many as take a fraction of a second.
class Comparison_Budget {
 public:
  /// Nothing may be compared any more.
  bool is_spent() const { return left_ == 0; }
  /// Takes note of what was compared.
  void spend(std::size_t letters) { left_ -= std::min(left_, letters); }

 private:
  std::size_t left_ = 20'000'000;
};

/// "; did you mean "..."?" or a full stop.
VEMORA_API std::string asking_for(std::string_view meant);

}  // namespace kuv::vemora::operations
