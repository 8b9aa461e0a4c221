// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <string>

namespace kuv::vemora::ODB_Utils {

/// One term of a tag filter: satisfied by a record that has the tag, and, where a value is given,
/// has it with that value, byte for byte.
struct Tag_Search_Term {
  std::string name;                  ///< the tag that is asked for
  std::optional<std::string> value;  ///< nothing: its presence is enough
};

/// By name, then by value.
inline bool operator<(const Tag_Search_Term& left, const Tag_Search_Term& right) {
  const int order = left.name.compare(right.name);
  return order == 0 ? left.value < right.value : order < 0;
}

/// The same name and value.
inline bool operator==(const Tag_Search_Term& left, const Tag_Search_Term& right) {
  return left.name == right.name && left.value == right.value;
}

}  // namespace kuv::vemora::ODB_Utils
