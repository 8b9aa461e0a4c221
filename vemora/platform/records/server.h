// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora {

/// One video-management server of the site.
struct server {
  std::uint64_t id = 0;  ///< identity of the record
  std::string name;      ///< for people
  Tag_Map tags;          ///< matched by the server filters of triggers
};

}  // namespace kuv::vemora
