// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// "UTF-16" or "UTF-32" if a document is written in it, by its byte order mark or by the zero bytes
/// around its first character, which is ASCII; otherwise empty.
VEMORA_API std::string_view wide_encoding(std::string_view document);

/// Whether a document that is not UTF-8 looks like Latin-1: none of its bytes is part of a UTF-8
/// character of several bytes, and none is a control character of Latin-1.
VEMORA_API bool looks_like_latin_1(std::string_view document);

}  // namespace kuv::vemora::embedded_server
