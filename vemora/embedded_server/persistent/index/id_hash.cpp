// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/id_hash.h"

#include <sys/random.h>

#include <chrono>

namespace kuv::vemora::embedded_server {
namespace {

std::uint64_t make_seed() {
  std::uint64_t seed = 0;
  if (::getrandom(&seed, sizeof seed, GRND_NONBLOCK) == sizeof seed) {
    return seed;
  }
  // A machine that has just started may have no random numbers yet.
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return static_cast<std::uint64_t>(now) ^ reinterpret_cast<std::uintptr_t>(&seed);
}

}  // namespace

const std::uint64_t id_hash_seed = make_seed();

}  // namespace kuv::vemora::embedded_server
