// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// Changes a few bytes of a text somewhere.
void mutate_text(std::string& text, Random& random);

}  // namespace kuv::fuzz
