#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many objects and arrays may lie in each other around a value.
constexpr std::size_t deepest_nesting = 1000;

struct Grammar_Fault {
  std::string message;
  std::size_t offset = 0;
};

/// The first place where a text breaks the grammar of JSON (RFC 8259) or is neither an object nor
/// an array; nothing when it keeps to it. Said before a text is read, because the reader lets pass
/// numbers, escapes and comments that JSON does not know. Whether keys repeat is not looked at.
VEMORA_API std::optional<Grammar_Fault> find_grammar_fault(std::string_view text);

}  // namespace kuv::vemora::embedded_server
