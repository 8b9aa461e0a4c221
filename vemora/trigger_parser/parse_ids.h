// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <vector>

#include "vemora/trigger_parser/faults.h"

namespace kuv::vemora {

/// The ids of an array. Each element that is none is a fault of that text.
std::vector<std::uint64_t> parse_ids(const Json::Value& array, const char* message, Faults& faults);

}  // namespace kuv::vemora
