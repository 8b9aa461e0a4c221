// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <locale>
#include <optional>
#include <string>
#include <string_view>

#include "vemora/platform/database_enums.h"

namespace kuv::vemora {

/// Reads the types of the sources of a document. What is a capital letter is decided by the default
/// locale of the moment it is made; it is asked once for each letter, not for every letter of every
/// source.
class Source_Types {
 public:
  Source_Types() {
    const std::locale locale;
    const auto& letters = std::use_facet<std::ctype<char>>(locale);
    for (std::size_t letter = 0; letter < lower_case_.size(); ++letter) {
      lower_case_[letter] = letters.tolower(static_cast<char>(letter));
    }
  }

  /// The type by its name in a document, in any case of letters; nothing for a name that this
  /// server does not know.
  std::optional<Trigger_Source_Type> type_of(std::string_view name) {
    name_.resize(name.size());
    std::transform(name.begin(), name.end(), name_.begin(),
                   [this](char letter) { return lower_case_[static_cast<unsigned char>(letter)]; });
    try {
      return Database_Enums::convert<Trigger_Source_Type>(name_);
    } catch (...) {
      return std::nullopt;
    }
  }

 private:
  std::array<char, std::numeric_limits<unsigned char>::max() + 1> lower_case_{};
  std::string name_;  ///< a member for its memory alone, which the next name needs too
};

/// Whether the parser keeps a source of that type: external sources fire by themselves, there is
/// nothing to subscribe to.
inline bool is_kept(const std::optional<Trigger_Source_Type>& type) {
  return type && *type != Trigger_Source_Type::external;
}

}  // namespace kuv::vemora
