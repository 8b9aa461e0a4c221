// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <locale>
#include <optional>
#include <string>

#include "vemora/platform/database_enums.h"

namespace kuv::vemora {

/// The type of a source by its name in a document, in any case of letters; nothing for a name that
/// this server does not know.
inline std::optional<Trigger_Source_Type> source_type_of(std::string name,
                                                         const std::ctype<char>& letters) {
  for (char& character : name) {
    character = letters.tolower(character);
  }
  try {
    return Database_Enums::convert<Trigger_Source_Type>(name);
  } catch (...) {
    return std::nullopt;
  }
}

/// Whether the parser keeps a source of that type: external sources fire by themselves, there is
/// nothing to subscribe to.
inline bool is_kept(const std::optional<Trigger_Source_Type>& type) {
  return type && *type != Trigger_Source_Type::external;
}

}  // namespace kuv::vemora
