// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// Changes one thing somewhere in the document: a value, its type, a key, the elements of an array.
void mutate_tree(Json::Value& document, Random& random);

}  // namespace kuv::fuzz
