// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace kuv::test {

/// Draws that are the same for the same seed, on every standard library.
class Random_Draws {
 public:
  explicit Random_Draws(std::uint64_t seed) : engine_(seed) {}

  std::size_t pick(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }
  bool one_in(std::size_t count) { return pick(count) == 0; }

  template <class Value>
  const Value& any_of(const std::vector<Value>& values) {
    return values[pick(values.size())];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace kuv::test
