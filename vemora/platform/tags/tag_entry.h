// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <tuple>

#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora {

/// One tag of a record that keeps its tags as a set.
struct Tag_Entry {
  std::string name;  ///< of the tag
  Tag_Info info;     ///< what it says under that name
};

/// By name, then by value.
inline bool operator<(const Tag_Entry& left, const Tag_Entry& right) {
  return std::tie(left.name, left.info) < std::tie(right.name, right.info);
}

/// The same name and value.
inline bool operator==(const Tag_Entry& left, const Tag_Entry& right) {
  return left.name == right.name && left.info == right.info;
}

}  // namespace kuv::vemora
