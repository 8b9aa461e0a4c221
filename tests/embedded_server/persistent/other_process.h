// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace kuv::test {

/// Another process that works on a database, a step at a time. See database_user.cpp for the steps.
class Other_Process {
 public:
  Other_Process(const std::string& location, std::chrono::milliseconds lock_wait);
  ~Other_Process();
  Other_Process(const Other_Process&) = delete;
  Other_Process& operator=(const Other_Process&) = delete;

  /// Has it take a step and waits for the answer: "done", or what went wrong.
  std::string ask(const std::string& step);

  /// Ends it at once; what it wrote stays.
  void kill();

 private:
  pid_t process_ = -1;
  std::FILE* steps_ = nullptr;
  std::FILE* answers_ = nullptr;
};

}  // namespace kuv::test
