#pragma once

#include <string_view>

namespace kuv::vemora::embedded_server {

/// Whether the bytes are UTF-8: shortest forms, no halves of surrogate pairs, nothing beyond
/// U+10FFFF.
bool is_utf8(std::string_view text);

}  // namespace kuv::vemora::embedded_server
