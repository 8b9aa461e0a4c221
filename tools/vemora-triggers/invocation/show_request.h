// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kuv::vemora::tools {

/// What `show` is asked for.
struct Show_Request {
  std::string what;
  std::optional<std::uint64_t> camera_id;
  std::optional<std::uint64_t> trigger_id;
  std::optional<std::string> topic;
  std::string sort;  ///< the name of a column; empty: by id
};

}  // namespace kuv::vemora::tools
