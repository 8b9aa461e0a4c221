// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/nearest_name.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "vemora/operations/warnings/found_warnings.h"

namespace kuv::vemora::operations {
namespace {

constexpr std::size_t longest_compared = 200;  ///< bytes; a name that is longer is like no other
constexpr std::size_t most_differences = 3;
constexpr std::size_t shortest_part = 4;
constexpr std::size_t far_away = most_differences + 1;

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// How many letters must be left out, put in, changed or swapped with the next to make one name of
/// the other, upper and lower case being one; `far_away` when more than is looked for. Looks at a
/// few letters around each alone.
class Differences {
 public:
  Differences(std::string_view left, std::string_view right) : left_(left), right_(right) {}

  std::size_t count() {
    if (std::max(left_.size(), right_.size()) - std::min(left_.size(), right_.size()) >
        most_differences) {
      return far_away;
    }
    Row before_last{};
    Row last{};
    for (std::size_t column = 0; column <= right_.size(); ++column) {
      last[column] = smallest(column);
    }
    for (std::size_t row = 1; row <= left_.size(); ++row) {
      Row next;
      next.fill(far_away);
      next[0] = smallest(row);
      const std::size_t end = std::min(right_.size(), row + most_differences);
      for (std::size_t column = begin_of(row); column <= end; ++column) {
        next[column] = at(row, column, next, last, before_last);
      }
      compared_ += end + 1 - begin_of(row);
      before_last = std::exchange(last, next);
      if (*std::min_element(last.begin(), last.begin() + end + 1) == far_away) {
        return far_away;  // no later row comes nearer
      }
    }
    return last[right_.size()];
  }

  std::size_t compared() const { return compared_; }

 private:
  using Row = std::array<std::uint8_t, longest_compared + 1>;

  static std::uint8_t smallest(std::size_t count) {
    return static_cast<std::uint8_t>(std::min(count, far_away));
  }

  static std::size_t begin_of(std::size_t row) {
    return row > most_differences ? row - most_differences : 1;
  }

  std::uint8_t at(std::size_t row, std::size_t column, const Row& next, const Row& last,
                  const Row& before_last) const {
    const bool same = lower(left_[row - 1]) == lower(right_[column - 1]);
    std::size_t count = std::min({last[column] + std::size_t{1}, next[column - 1] + std::size_t{1},
                                  last[column - 1] + std::size_t{same ? 0U : 1U}});
    const bool swapped = row > 1 && column > 1 &&
                         lower(left_[row - 1]) == lower(right_[column - 2]) &&
                         lower(left_[row - 2]) == lower(right_[column - 1]);
    if (swapped) {
      count = std::min(count, before_last[column - 2] + std::size_t{1});
    }
    return smallest(count);
  }

  std::string_view left_;
  std::string_view right_;
  std::size_t compared_ = 0;
};

/// Adds how many letters it compared.
bool has_part(std::string_view whole, std::string_view part, std::size_t& compared) {
  return part.size() >= shortest_part && part.size() < whole.size() &&
         std::search(whole.begin(), whole.end(), part.begin(), part.end(),
                     [&compared](char left, char right) {
                       ++compared;
                       return lower(left) == lower(right);
                     }) != whole.end();
}

}  // namespace

std::size_t Nearest_Name::offer(std::string_view name) {
  std::size_t compared = 1;  // a look at the lengths
  if (name.empty() || wrong_.size() > longest_compared || name.size() > longest_compared) {
    return compared;
  }
  Differences differences(wrong_, name);
  std::size_t distance = differences.count();
  compared += differences.compared();
  const std::size_t allowed = std::min(
      most_differences, std::max<std::size_t>(1, std::max(wrong_.size(), name.size()) / 3));
  if (distance > allowed) {
    if (!nearest_.empty() ||
        (!has_part(name, wrong_, compared) && !has_part(wrong_, name, compared))) {
      return compared;
    }
    distance = far_away;
  }
  if (distance < distance_) {
    distance_ = distance;
    nearest_ = name;
  }
  return compared;
}

std::string asking_for(std::string_view meant) {
  return meant.empty() ? "." : "; did you mean " + in_quotes(meant) + "?";
}

}  // namespace kuv::vemora::operations
