// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vemora-triggers/heap/heap.h"
#include "vemora/embedded_server/logging/console.h"

namespace kuv::benchmarks {

/// A program that makes passes, set up as every program that does. `run` takes the arguments and
/// answers the exit status; what it throws is told, and ends the program with 3.
inline int run_program(std::string_view name, int count, char** arguments,
                       int (*run)(const std::vector<std::string>&)) {
  try {
    kuv::logging::log_to(std::cerr, std::nullopt);
    vemora::tools::set_up_heap();
    return run({arguments + 1, arguments + count});
  } catch (const std::exception& fault) {
    std::cerr << name << ": " << fault.what() << '\n';
    return 3;
  }
}

}  // namespace kuv::benchmarks
