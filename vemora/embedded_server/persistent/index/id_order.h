// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <utility>

namespace kuv::vemora::embedded_server {

/// Sorts by what `key` answers, unless the elements are in order already, as they mostly are: the
/// database orders ids as signed numbers, and only ids beyond the signed ones come out of order.
template <class Container, class Key>
void sort_by(Container& elements, Key key) {
  const auto before = [&key](const auto& left, const auto& right) {
    return key(left) < key(right);
  };
  if (!std::is_sorted(elements.begin(), elements.end(), before)) {
    std::sort(elements.begin(), elements.end(), before);
  }
}

/// The same, and leaves one of those that have the same key.
template <class Container, class Key>
void sort_unique_by(Container& elements, Key key) {
  sort_by(elements, key);
  const auto same = [&key](const auto& left, const auto& right) { return key(left) == key(right); };
  elements.erase(std::unique(elements.begin(), elements.end(), same), elements.end());
}

}  // namespace kuv::vemora::embedded_server
