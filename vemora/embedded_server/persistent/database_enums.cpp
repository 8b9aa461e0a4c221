// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/database_enums.h"

#include <algorithm>
#include <stdexcept>

#include "vemora/embedded_server/persistent/source_type_names.h"

namespace kuv::vemora {

std::string_view name_of(Trigger_Source_Type type) {
  const auto index = static_cast<std::size_t>(type);
  return index < source_type_names.size() ? source_type_names[index] : "unknown";
}

namespace Database_Enums {

template <>
Trigger_Source_Type convert<Trigger_Source_Type>(const std::string& name) {
  const auto* const found = std::find(source_type_names.begin(), source_type_names.end(), name);
  if (found == source_type_names.end()) {
    throw std::invalid_argument("unknown trigger source type \"" + name + "\"");
  }
  return static_cast<Trigger_Source_Type>(found - source_type_names.begin());
}

}  // namespace Database_Enums
}  // namespace kuv::vemora
