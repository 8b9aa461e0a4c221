#pragma once

#include <cstddef>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many objects and arrays of a JSON text may lie in each other around a value: readers of JSON
/// call themselves for each, and a stack has an end.
constexpr std::size_t deepest_nesting = 1000;

/// Whether objects and arrays lie deeper in each other than that, as far as the text is JSON at
/// all. A reader that stops where it is none has gone no deeper.
VEMORA_API bool is_nested_too_deeply(std::string_view json);

}  // namespace kuv::vemora::embedded_server
