// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// Where limits lie: of the settings, of 32 and of 64 bits.
const std::vector<Json::Value>& boundary_numbers();

/// Words that the parser knows, and some that nobody knows.
const std::vector<std::string>& words();

/// A value of any type.
Json::Value any_value(Random& random);

/// An element of an array or object, which must not be empty.
Json::Value& any_child(Json::Value& parent, Random& random);

/// Exchanges two elements of an array, which must not be empty; perhaps one with itself.
void swap_elements(Json::Value& array, Random& random);

}  // namespace kuv::fuzz
