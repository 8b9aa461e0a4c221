// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// Changes one thing in valid documents that leaves them valid: what is optional, what is ignored,
/// the order of elements, the way a number or a type is written.
void vary_validly(Json::Value& configuration, Json::Value& mapping, Random& random);

}  // namespace kuv::fuzz
