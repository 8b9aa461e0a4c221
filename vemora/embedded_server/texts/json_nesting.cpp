// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/json_nesting.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The offset after the string that begins at `offset`; past the end if the string has no end.
std::size_t end_of_string(std::string_view json, std::size_t offset) {
  for (++offset; offset < json.size() && json[offset] != '"'; ++offset) {
    offset += json[offset] == '\\' ? 1 : 0;
  }
  return offset + 1;
}

}  // namespace

bool is_nested_too_deeply(std::string_view json) {
  std::size_t depth = 0;
  for (std::size_t offset = 0; offset < json.size();) {
    const char here = json[offset];
    if (here == '"') {
      offset = end_of_string(json, offset);
      continue;
    }
    if (here == '{' || here == '[') {
      if (++depth > deepest_nesting) {
        return true;
      }
    } else if ((here == '}' || here == ']') && depth > 0) {
      --depth;
    }
    ++offset;
  }
  return false;
}

}  // namespace kuv::vemora::embedded_server
