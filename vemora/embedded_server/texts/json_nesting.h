// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many objects and arrays may be nested in a JSON text. JSON readers call themselves for each
/// level, and the stack is limited.
constexpr std::size_t deepest_nesting = 1000;

/// True if objects and arrays are nested deeper than that. If the text is not valid JSON, a reader
/// stops at the first error and has gone no deeper than this function looked.
VEMORA_API bool is_nested_too_deeply(std::string_view json);

}  // namespace kuv::vemora::embedded_server
