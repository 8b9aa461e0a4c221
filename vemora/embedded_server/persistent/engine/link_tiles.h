// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vemora/embedded_server/persistent/index/id_hash.h"

namespace kuv::vemora::embedded_server {

/// How many linked ids a tile has.
inline constexpr std::size_t ids_of_a_tile = 64;

/// Links in an order that is good for a table with an index by record and another by linked id.
/// Rows that come record by record add to as many pages of the other index as there are linked ids,
/// one after the other, and the processor's cache does not hold these. So the linked ids are
/// divided into tiles, as they first come up; within a tile, links keep their order.
template <class Row>
std::vector<Row> in_tiles(const std::vector<Row>& links) {
  std::unordered_map<std::uint64_t, std::size_t, Id_Hash> tile_of;
  std::vector<std::size_t> begins{0};  // of each tile, and where the last one ends
  for (const Row& link : links) {
    const std::size_t newest = tile_of.size() / ids_of_a_tile;
    const std::size_t tile = tile_of.try_emplace(link.key.linked_id, newest).first->second;
    begins.resize(std::max(begins.size(), tile + 2));
    ++begins[tile + 1];
  }
  for (std::size_t tile = 1; tile < begins.size(); ++tile) {
    begins[tile] += begins[tile - 1];
  }
  std::vector<Row> ordered(links.size());
  for (const Row& link : links) {
    ordered[begins[tile_of[link.key.linked_id]]++] = link;
  }
  return ordered;
}

}  // namespace kuv::vemora::embedded_server
