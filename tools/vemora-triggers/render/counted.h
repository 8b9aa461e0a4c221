// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <string>

namespace kuv::vemora::tools {

/// A number with the singular or plural of what is counted.
inline std::string counted(std::uint64_t count, const char* one, const char* many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace kuv::vemora::tools
