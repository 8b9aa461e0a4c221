// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The text as it is safe to show to a person, on one line. Spelled out as \x1b, \u202e or
/// \U000e0041 are characters that a terminal would obey (control characters), that break or reverse
/// the line, or that are invisible, and bytes that are not UTF-8. All others stay as they are, a
/// backslash too, so the original cannot be restored from the result; use JSON for that. Applied to
/// its own result, the function changes nothing.
///
/// Joiners and variation selectors stay where they matter: after characters from U+0600 on (Arabic,
/// Indic scripts, emoji), words and signs differ by them. Elsewhere, or repeated, they could only
/// hide something.
VEMORA_API std::string printable(std::string_view text);

}  // namespace kuv::vemora::embedded_server
