// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::vemora {

/// Throws Internal_Error<std::logic_error> with this text.
[[noreturn, gnu::cold, gnu::noinline]] inline void raise_missing(const char* text) {
  throw Internal_Error<std::logic_error>(text, error_codes::internal);
}

/// The collaborator that an object was constructed with, for an operation that needs it. Objects
/// take null pointers at their construction: the first operation that finds one throws
/// Internal_Error<std::logic_error>, whose text names what is missing.
template <class Pointer>
auto& required(const Pointer& collaborator, const char* text_if_missing) {
  if (!collaborator) {
    raise_missing(text_if_missing);
  }
  return *collaborator;
}

}  // namespace kuv::vemora
