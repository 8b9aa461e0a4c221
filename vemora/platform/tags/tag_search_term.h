// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <string>
#include <tuple>

namespace kuv::vemora::ODB_Utils {

/// One term of a tag filter: satisfied by a record that has the tag, and, where a value is given,
/// has it with that value, byte for byte.
struct Tag_Search_Term {
  std::string name;                  ///< the tag that is asked for
  std::optional<std::string> value;  ///< nothing: its presence is enough
};

/// By name, then by value.
inline bool operator<(const Tag_Search_Term& left, const Tag_Search_Term& right) {
  return std::tie(left.name, left.value) < std::tie(right.name, right.value);
}

/// The same name and value.
inline bool operator==(const Tag_Search_Term& left, const Tag_Search_Term& right) {
  return left.name == right.name && left.value == right.value;
}

}  // namespace kuv::vemora::ODB_Utils
