// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

namespace kuv::benchmarks {

/// The program `floors`, which lies beside this one, at work as long as this lives. Everything
/// throws std::runtime_error when it is gone.
class Floor_Process {
 public:
  /// See floors.cpp.
  explicit Floor_Process(const std::string& place);
  ~Floor_Process();
  Floor_Process(const Floor_Process&) = delete;
  Floor_Process& operator=(const Floor_Process&) = delete;

  void take_rows(const std::string& location) { ask("rows " + location); }
  double write() { return ask("write"); }  ///< answers the seconds
  double read() { return ask("read"); }    ///< answers the seconds

 private:
  double ask(const std::string& request);

  pid_t process_ = -1;
  std::FILE* requests_ = nullptr;
  std::FILE* answers_ = nullptr;
};

}  // namespace kuv::benchmarks
