// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// A text that mostly is JSON, with whatever a reader can stumble over: escapes, bytes that are no
/// UTF-8, numbers at every limit, the keys of documents and others, blanks of every length. About
/// half of the texts are damaged somewhere.
std::string random_json(Random& random);

}  // namespace kuv::fuzz
