#pragma once

#include <string>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// Changes a few bytes of a text somewhere.
void mutate_text(std::string& text, Random& random);

}  // namespace kuv::fuzz
