// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <optional>
#include <string>

namespace kuv::vemora {

/// What a record says under one tag name: nothing more than the name, or a text.
struct Tag_Info {
  std::optional<std::string> value;  ///< nothing: the tag is there, without a text
};

/// The same value.
inline bool operator==(const Tag_Info& left, const Tag_Info& right) {
  return left.value == right.value;
}
/// Tags without a value come first.
inline bool operator<(const Tag_Info& left, const Tag_Info& right) {
  return left.value < right.value;
}

/// The tags of a record, by name.
using Tag_Map = std::map<std::string, Tag_Info>;

}  // namespace kuv::vemora
