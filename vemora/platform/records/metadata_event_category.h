// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

namespace kuv::vemora {

/// A category that generic metadata events are filed under.
struct metadata_event_category {
  std::uint64_t id = 0;  ///< identity of the record
  std::string name;      ///< for people
};

}  // namespace kuv::vemora
