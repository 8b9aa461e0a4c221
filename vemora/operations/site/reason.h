// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <vector>

namespace kuv::vemora::operations {

/// Why something is as it is.
struct Reason {
  std::string code;  ///< for programs: "camera-filter"
  std::string text;  ///< for people: one sentence
};

using Reasons = std::vector<Reason>;

}  // namespace kuv::vemora::operations
