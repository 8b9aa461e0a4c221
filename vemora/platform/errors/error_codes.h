#pragma once

#include <cstdint>

namespace kuv::vemora::error_codes {

inline constexpr std::int32_t invalid_document = 0x3C000;  ///< a document failed validation
inline constexpr std::int32_t internal = -2;  ///< the database does not hold what it should

}  // namespace kuv::vemora::error_codes
