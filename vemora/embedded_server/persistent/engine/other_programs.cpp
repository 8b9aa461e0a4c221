// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/other_programs.h"

#include <fmt/format.h>

namespace kuv::vemora::embedded_server {

std::string at_work_elsewhere(std::chrono::milliseconds waited) {
  return fmt::format("another process is at work on it; gave up after {} ms", waited.count());
}

std::string locked_by_another_program(std::chrono::milliseconds waited) {
  return fmt::format("another program keeps the database locked; gave up after {} ms",
                     waited.count());
}

std::string changed_by_another_program() {
  return "another program changed the database meanwhile";
}

}  // namespace kuv::vemora::embedded_server
