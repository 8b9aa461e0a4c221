// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/characters.h"

#include <algorithm>

namespace kuv::vemora::embedded_server {
namespace {

/// Both ends are included.
struct Byte_Range {
  unsigned char first;
  unsigned char last;

  bool has(char byte) const {
    const auto value = static_cast<unsigned char>(byte);
    return first <= value && value <= last;
  }
};

/// Characters whose first bytes are in one range: their size, and the range of the second byte. All
/// further bytes are continuation bytes.
struct Character_Form {
  std::size_t size;
  Byte_Range lead;
  Byte_Range second;
};

constexpr Byte_Range continuation{0x80, 0xBF};

constexpr Character_Form forms[] = {
    {2, {0xC2, 0xDF}, continuation},
    {3, {0xE0, 0xE0}, {0xA0, 0xBF}},  // no code that fits in two bytes
    {3, {0xE1, 0xEC}, continuation},
    {3, {0xED, 0xED}, {0x80, 0x9F}},  // no surrogates
    {3, {0xEE, 0xEF}, continuation},
    {4, {0xF0, 0xF0}, {0x90, 0xBF}},  // no code that fits in three bytes
    {4, {0xF1, 0xF3}, continuation},
    {4, {0xF4, 0xF4}, {0x80, 0x8F}},  // nothing after U+10FFFF
};

bool has_form(std::string_view bytes, const Character_Form& form) {
  return bytes.size() >= form.size && form.lead.has(bytes[0]) && form.second.has(bytes[1]) &&
         std::all_of(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(form.size),
                     [](char byte) { return continuation.has(byte); });
}

std::size_t step_at(std::string_view text, std::size_t offset) {
  return std::max<std::size_t>(character_size(text, offset), 1);
}

}  // namespace

std::size_t character_size(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) {
    return 0;
  }
  if (static_cast<unsigned char>(text[offset]) < 0x80) {
    return 1;
  }
  const std::string_view rest = text.substr(offset);
  const auto* const found =
      std::find_if(std::begin(forms), std::end(forms),
                   [rest](const Character_Form& form) { return has_form(rest, form); });
  return found == std::end(forms) ? 0 : found->size;
}

char32_t character_code(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character.front());
  char32_t code = character.size() == 1 ? lead : lead & (0x7FU >> character.size());
  for (const char byte : character.substr(1)) {
    code = code * 64 + (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return code;
}

bool is_utf8(std::string_view text) {
  std::size_t offset = 0;
  while (offset < text.size()) {
    const std::size_t size = character_size(text, offset);
    if (size == 0) {
      return false;
    }
    offset += size;
  }
  return true;
}

std::size_t count_characters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t offset = 0; offset < text.size(); offset += step_at(text, offset)) {
    ++count;
  }
  return count;
}

std::string_view first_characters(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  for (; count > 0 && offset < text.size(); --count) {
    offset += step_at(text, offset);
  }
  return text.substr(0, offset);
}

std::size_t byte_order_mark_size(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  return text.substr(0, mark.size()) == mark ? mark.size() : 0;
}

}  // namespace kuv::vemora::embedded_server
