// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "fuzz/document_parsing.h"

namespace kuv::fuzz {

struct Mutant {
  Documents documents;
  bool is_valid = false;  ///< nothing was changed that matters, so that it must be accepted
};

/// The mutant of that number in the sequence of a seed: valid documents, first varied without doing
/// them harm, then most of them changed in their trees, where nothing is safe, or in their texts.
Mutant make_mutant(std::uint64_t seed, std::uint64_t number);

}  // namespace kuv::fuzz
