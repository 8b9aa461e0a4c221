// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

// Texts should be UTF-8, but need not be: a byte that is not part of a UTF-8 character counts as
// one character. Offsets are in bytes.

/// The number of bytes of the character that begins at `offset`; 0 if no character begins there.
VEMORA_API std::size_t character_size(std::string_view text, std::size_t offset);

/// The code of one UTF-8 character.
VEMORA_API char32_t character_code(std::string_view character);

/// True if every byte is part of a UTF-8 character.
VEMORA_API bool is_utf8(std::string_view text);

VEMORA_API std::size_t count_characters(std::string_view text);

/// The first `count` characters of a text, or all of it if it has fewer.
VEMORA_API std::string_view first_characters(std::string_view text, std::size_t count);

/// The number of bytes of the byte order mark with which a text begins; 0 without one.
VEMORA_API std::size_t byte_order_mark_size(std::string_view text);

}  // namespace kuv::vemora::embedded_server
