// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/text_encoding.h"

#include <string>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

bool begins_with(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

/// Which of the first four bytes are zero, as in "x0x0".
std::string zeros_of(std::string_view text) {
  std::string zeros;
  for (const char byte : text.substr(0, 4)) {
    zeros += byte == '\0' ? '0' : 'x';
  }
  return zeros;
}

}  // namespace

std::string_view wide_encoding(std::string_view document) {
  using namespace std::string_view_literals;
  const std::string zeros = zeros_of(document);
  const bool has_wide_mark =
      begins_with(document, "\xFF\xFE\0\0"sv) || begins_with(document, "\0\0\xFE\xFF"sv);
  if (has_wide_mark || zeros == "x000" || zeros == "000x") {
    return "UTF-32";
  }
  const bool has_mark = begins_with(document, "\xFF\xFE"sv) || begins_with(document, "\xFE\xFF"sv);
  if (has_mark || zeros == "x0x0" || zeros == "0x0x") {
    return "UTF-16";
  }
  return {};
}

bool looks_like_latin_1(std::string_view document) {
  constexpr unsigned char first_letter = 0xA0;
  for (std::size_t offset = 0; offset < document.size(); ++offset) {
    const auto byte = static_cast<unsigned char>(document[offset]);
    if (byte >= 0x80 && (byte < first_letter || character_size(document, offset) != 0)) {
      return false;
    }
  }
  return !is_utf8(document);
}

}  // namespace kuv::vemora::embedded_server
