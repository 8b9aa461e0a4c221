// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>

namespace kuv::vemora::embedded_server {

/// A wait, for a bounded time, for a lock that has to be asked for again and again.
class Lock_Wait {
 public:
  explicit Lock_Wait(std::chrono::milliseconds longest)
      : begin_(std::chrono::steady_clock::now()), longest_(longest) {}

  /// Sleeps until it is time to ask again; at once false when the time is over.
  bool pause() const;

  std::chrono::milliseconds waited() const;

 private:
  std::chrono::steady_clock::time_point begin_;
  std::chrono::milliseconds longest_;
};

}  // namespace kuv::vemora::embedded_server
