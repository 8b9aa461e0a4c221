// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

namespace kuv::vemora::error_codes {

inline constexpr std::int32_t invalid_document = 0x3C000;  ///< a document failed validation
inline constexpr std::int32_t internal = -2;  ///< what the system relies on is not there

}  // namespace kuv::vemora::error_codes
