// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "vemora/platform/export.h"
#include "vemora/platform/utils/json_elements.h"

namespace kuv::utils {

/// Assigns `fallback` to `target` when that is null; any other value is left as it is.
VEMORA_API void set_json_value_if_null(Json::Value& target, const Json::Value& fallback);

/// Appends the elements of a JSON array of unsigned 64-bit integers to `numbers`, in order,
/// duplicates kept; `numbers` is not cleared first. False when `array` is no array, and at the
/// first element that is null, was never assigned or is no unsigned 64-bit integer; what came
/// before it stays appended.
template <class Container>
bool transform_json_array(const Json::Value& array, Container& numbers) {
  if (!array.isArray()) {
    return false;
  }
  for (const auto& [index, element] : Json_Elements(array)) {
    if (!element.isUInt64()) {  // null is none either
      return false;
    }
    numbers.push_back(element.asUInt64());
  }
  return true;
}

}  // namespace kuv::utils
