// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>

namespace kuv::vemora::tools {

/// What `diff` compares.
struct Diff_Request {
  std::uint64_t before = 0;            ///< a pass
  std::optional<std::uint64_t> after;  ///< a pass; nothing: the stored documents
  bool tells_difference = false;       ///< by the exit status
};

}  // namespace kuv::vemora::tools
