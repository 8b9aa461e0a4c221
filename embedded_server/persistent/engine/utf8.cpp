#include "embedded_server/persistent/engine/utf8.h"

#include <cstddef>
#include <cstdint>

namespace kuv::vemora::embedded_server {
namespace {

/// What the first byte of a letter says of it.
struct Letter {
  std::size_t size;     ///< in bytes; 0: no letter begins so
  std::uint32_t least;  ///< the smallest code that needs that many
  std::uint32_t code;   ///< the bits that the first byte holds
};

Letter letter_of(unsigned char first) {
  if (first < 0x80) {
    return {1, 0, first};
  }
  if (first >= 0xC0 && first < 0xE0) {
    return {2, 0x80, first & 0x1FU};
  }
  if (first >= 0xE0 && first < 0xF0) {
    return {3, 0x800, first & 0x0FU};
  }
  if (first >= 0xF0 && first < 0xF8) {
    return {4, 0x10000, first & 0x07U};
  }
  return {0, 0, 0};
}

bool is_code(const Letter& letter) {
  const bool half_of_a_pair = letter.code >= 0xD800 && letter.code < 0xE000;
  return letter.code >= letter.least && letter.code <= 0x10FFFF && !half_of_a_pair;
}

}  // namespace

bool is_utf8(std::string_view text) {
  std::size_t place = 0;
  while (place < text.size()) {
    Letter letter = letter_of(static_cast<unsigned char>(text[place]));
    if (letter.size == 0 || letter.size > text.size() - place) {
      return false;
    }
    for (std::size_t next = place + 1; next < place + letter.size; ++next) {
      const auto byte = static_cast<unsigned char>(text[next]);
      if ((byte & 0xC0U) != 0x80U) {
        return false;
      }
      letter.code = letter.code << 6U | (byte & 0x3FU);
    }
    if (!is_code(letter)) {
      return false;
    }
    place += letter.size;
  }
  return true;
}

}  // namespace kuv::vemora::embedded_server
