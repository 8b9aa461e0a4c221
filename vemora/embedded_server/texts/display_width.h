// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many columns of a terminal a printable text takes: none for a combining character, two for a
/// wide one, as the C library says of them, whatever the locale of the process is.
VEMORA_API std::size_t display_width(std::string_view text);

/// The longest beginning of a printable text that fits in so many columns, with the combining
/// characters of its last character.
VEMORA_API std::string_view first_columns(std::string_view text, std::size_t columns);

/// A printable text that takes no more than so many columns: if it is longer, cut and ended with
/// "...", or, in less than four columns, just cut.
VEMORA_API std::string shortened_to(std::string_view text, std::size_t columns);

}  // namespace kuv::vemora::embedded_server
