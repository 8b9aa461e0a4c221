// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "thrower.h"

#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/tags/tag_filter_error.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;

template <class Error>
void raise() {
  throw Error("a text", 42);
}

void raise_tag_filter_error() {
  throw Tag_Filter_Error({{"a text", 7}, {"another one", 9}});
}

}  // namespace

Thrower thrower() {
  return {&raise<Vemora_Error<std::runtime_error>>,   &raise<Vemora_Error<std::logic_error>>,
          &raise<Internal_Error<std::runtime_error>>, &raise<Internal_Error<std::logic_error>>,
          &raise<Backend_Error<std::runtime_error>>,  &raise_tag_filter_error};
}

}  // namespace kuv::test
