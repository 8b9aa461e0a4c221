#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// Looks for the name that was probably meant, among names that are offered to it one by one: the
/// one that differs least, by a letter in three at most, or that has the wrong one in it.
class VEMORA_API Nearest_Name {
 public:
  explicit Nearest_Name(std::string_view wrong) : wrong_(wrong) {}

  void offer(std::string_view name);

  /// Empty when none comes near.
  std::string_view found() const { return nearest_; }

 private:
  std::string_view wrong_;
  std::string_view nearest_;
  std::size_t distance_ = static_cast<std::size_t>(-1);
};

/// How many names may be looked at in all where there may be thousands, and thousands to be found.
class Comparison_Budget {
 public:
  /// Counts one.
  bool is_spent() { return left_ == 0 || --left_ == 0; }

 private:
  std::size_t left_ = 1'000'000;
};

/// "; did you mean "..."?" or a full stop.
VEMORA_API std::string asking_for(std::string_view meant);

}  // namespace kuv::vemora::operations
