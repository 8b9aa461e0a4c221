// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/index/id_hash.h"

namespace kuv::vemora::embedded_server {

/// The rows of links, in the order in which their tables have them: by trigger, those of each
/// trigger in the order in which they were given.
template <class Row>
std::vector<Row> rows_by_trigger(const std::vector<Changes::Link>& links) {
  std::unordered_map<std::uint64_t, std::size_t, Id_Hash> place_of;  // of a trigger's next row
  for (const Changes::Link& link : links) {
    ++place_of[link.trigger_id];
  }
  std::vector<std::uint64_t> trigger_ids;
  trigger_ids.reserve(place_of.size());
  for (const auto& [trigger_id, count] : place_of) {
    trigger_ids.push_back(trigger_id);
  }
  std::sort(trigger_ids.begin(), trigger_ids.end());
  std::size_t next = 0;
  for (const std::uint64_t trigger_id : trigger_ids) {
    std::size_t& place = place_of[trigger_id];
    next += std::exchange(place, next);
  }
  std::vector<Row> rows(links.size());
  for (const Changes::Link& link : links) {
    rows[place_of[link.trigger_id]++] = {{link.record_id, link.trigger_id}};
  }
  return rows;
}

}  // namespace kuv::vemora::embedded_server
