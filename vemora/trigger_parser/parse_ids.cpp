// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/parse_ids.h"

#include "vemora/platform/utils/json.h"
#include "vemora/platform/utils/json_elements.h"

namespace kuv::vemora {
namespace {

/// Asks the function that refused the array about each element alone.
void tell_wrong_elements(const Json::Value& array, const char* message, Faults& faults) {
  const std::size_t before = faults.count();
  for (const auto& [index, element] : kuv::utils::Json_Elements(array)) {
    Json::Value alone(Json::arrayValue);
    alone.append(element);
    std::vector<std::uint64_t> ids;
    faults.require(kuv::utils::transform_json_array(alone, ids), Member(element, array), message);
  }
  faults.require(faults.count() > before, array, message);  // each alone was accepted
}

}  // namespace

std::vector<std::uint64_t> parse_ids(const Json::Value& array, const char* message,
                                     Faults& faults) {
  std::vector<std::uint64_t> ids;
  if (!kuv::utils::transform_json_array(array, ids)) {
    tell_wrong_elements(array, message, faults);
  }
  return ids;
}

}  // namespace kuv::vemora
