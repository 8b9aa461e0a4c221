// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace kuv::fuzz {

/// A sequence that a seed determines on every standard library: the engine is fixed by the
/// standard, its distributions are not and stay unused.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  std::uint64_t below(std::uint64_t bound) { return engine_() % bound; }

  bool chance(unsigned in_a_hundred) { return below(100) < in_a_hundred; }

  template <class Value>
  const Value& pick(const std::vector<Value>& values) {
    return values[below(values.size())];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace kuv::fuzz
