// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "vemora/embedded_server/persistent/engine/tables.h"

namespace kuv::vemora::embedded_server {

/// What has to be written so that a table holds what is wanted.
template <class Row>
struct Row_Changes {
  std::vector<Row> added;
  std::vector<Row> changed;
  std::vector<Row> deleted;
};

/// Appends what makes `wanted` of `stored`; a row that stays as it is appears nowhere.
template <class Row>
void append_difference(std::vector<Row> stored, std::vector<Row> wanted, Row_Changes<Row>& to) {
  const auto by_key = [](const Row& left, const Row& right) {
    return key_of(left) < key_of(right);
  };
  std::sort(stored.begin(), stored.end(), by_key);
  std::sort(wanted.begin(), wanted.end(), by_key);
  auto old = stored.begin();
  for (Row& row : wanted) {
    while (old != stored.end() && by_key(*old, row)) {
      to.deleted.push_back(std::move(*old++));
    }
    if (old == stored.end() || by_key(row, *old)) {
      to.added.push_back(std::move(row));
    } else if (!same_row(*old++, row)) {
      to.changed.push_back(std::move(row));
    }
  }
  std::move(old, stored.end(), std::back_inserter(to.deleted));
}

}  // namespace kuv::vemora::embedded_server
