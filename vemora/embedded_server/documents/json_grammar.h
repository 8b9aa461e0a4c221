#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "vemora/embedded_server/texts/json_nesting.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many values (objects, arrays, texts, numbers and words) a document may have where nothing
/// else is said: each takes about a hundred bytes of memory, whatever it takes of the document.
constexpr std::size_t most_values_unless_told = 20'000'000;

struct Grammar_Fault {
  std::string message;
  std::size_t offset = 0;
};

/// The first place where a text breaks the grammar of JSON (RFC 8259) or is neither an object nor
/// an array; nothing when it keeps to it. Said before a text is read, because the reader lets pass
/// numbers, escapes and comments that JSON does not know. Whether keys repeat is not looked at. A
/// value too many is a fault as well, found before anything is made of the text.
VEMORA_API std::optional<Grammar_Fault> find_grammar_fault(
    std::string_view text, std::size_t most_values = most_values_unless_told);

}  // namespace kuv::vemora::embedded_server
