// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/list.h"

namespace kuv::vemora::tools {
namespace {

bool is_digit(char letter) {
  return letter >= '0' && letter <= '9';
}

/// Takes the number that a text begins with, without leading zeros.
std::string_view take_number(std::string_view& text) {
  const auto* const end = std::find_if_not(text.begin(), text.end(), is_digit);
  std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(number.size());
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

}  // namespace

bool is_before(std::string_view left, std::string_view right) {
  while (!left.empty() && !right.empty()) {
    if (is_digit(left.front()) && is_digit(right.front())) {
      const std::string_view first = take_number(left);
      const std::string_view second = take_number(right);
      if (first.size() != second.size() || first != second) {
        return first.size() != second.size() ? first.size() < second.size() : first < second;
      }
    } else if (left.front() != right.front()) {
      return left.substr(0, 1) < right.substr(0, 1);
    } else {
      left.remove_prefix(1);
      right.remove_prefix(1);
    }
  }
  return left.size() < right.size();
}

}  // namespace kuv::vemora::tools
