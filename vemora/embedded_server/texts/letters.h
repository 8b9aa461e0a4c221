#pragma once

#include <cstddef>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

// Texts are UTF-8, as far as whoever wrote them kept to it: places in them are told in letters, and
// a byte that belongs to no letter counts as one.

/// How many bytes the letter that begins at `place` takes; 0 where none begins.
VEMORA_API std::size_t letter_size(std::string_view text, std::size_t place);

/// Whether every byte belongs to a letter.
VEMORA_API bool is_utf8(std::string_view text);

VEMORA_API std::size_t count_letters(std::string_view text);

/// The beginning of a text, `count` letters long or all of it.
VEMORA_API std::string_view first_letters(std::string_view text, std::size_t count);

/// The bytes of a byte order mark at the beginning of a text, which is no part of it.
VEMORA_API std::size_t byte_order_mark_size(std::string_view text);

}  // namespace kuv::vemora::embedded_server
