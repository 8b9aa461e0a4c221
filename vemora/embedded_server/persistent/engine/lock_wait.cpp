// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/lock_wait.h"

#include <algorithm>
#include <thread>

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::chrono::steady_clock::duration time_between_tries = std::chrono::milliseconds(5);

}  // namespace

bool Lock_Wait::pause() const {
  const auto left = begin_ + longest_ - std::chrono::steady_clock::now();
  if (left <= std::chrono::steady_clock::duration::zero()) {
    return false;
  }
  std::this_thread::sleep_for(std::min(left, time_between_tries));
  return true;
}

std::chrono::milliseconds Lock_Wait::waited() const {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               begin_);
}

}  // namespace kuv::vemora::embedded_server
