// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

struct Code_Range {
  char32_t first;
  char32_t last;

  bool has(char32_t code) const { return first <= code && code <= last; }
};

/// Control characters, format characters, and characters that fonts show as nothing.
constexpr Code_Range invisible[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F}, {0x00AD, 0x00AD},  // soft hyphen
    {0x034F, 0x034F},                                        // combining grapheme joiner
    {0x061C, 0x061C},                                        // changes the direction
    {0x115F, 0x1160},                                        // Hangul fillers
    {0x17B4, 0x17B5},                                        // Khmer vowels that are not shown
    {0x200B, 0x200B},                                        // zero-width space
    {0x200E, 0x200F},                                        // change the direction
    {0x2028, 0x202E},                                        // break the line, change the direction
    {0x2060, 0x206F},    // word joiner, invisible operators, directions
    {0x3164, 0x3164},    // Hangul fillers
    {0xFEFF, 0xFEFF},    // a byte order mark within a text
    {0xFFA0, 0xFFA0},    // Hangul fillers
    {0xFFF0, 0xFFFB},    // annotations
    {0x1BCA0, 0x1BCA3},  // shorthand controls
    {0x1D173, 0x1D17A},  // musical controls
    {0xE0000, 0xE00FF},  // tags: an invisible alphabet
    {0xE01F0, 0xE0FFF},  // reserved for more of them
};

constexpr Code_Range selectors[] = {{0x180B, 0x180F},
                                    {0xFE00, 0xFE0F},
                                    {0xE0100, 0xE01EF}};  // choose the form of the character before

constexpr Code_Range joiners{0x200C, 0x200D};  // whether the characters on both sides join

/// The first character of the scripts that use joiners and selectors.
constexpr char32_t first_joining = 0x0600;

template <class Ranges>
bool is_one_of(const Ranges& ranges, char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [code](const Code_Range& range) { return range.has(code); });
}

std::string spelled_out(char32_t code) {
  const auto number = static_cast<std::uint32_t>(code);
  if (number < 0x80) {
    return fmt::format("\\x{:02x}", number);
  }
  return number > 0xFFFF ? fmt::format("\\U{:08x}", number) : fmt::format("\\u{:04x}", number);
}

/// Decides, character by character, what can be shown.
class Visibility {
 public:
  bool shows(char32_t code) {
    const Before before = before_;
    if (is_one_of(selectors, code)) {
      before_ = before == Before::joining ? Before::selected : Before::other;
      return before == Before::joining;
    }
    if (joiners.has(code)) {
      before_ = Before::other;
      return before != Before::other;
    }
    const bool shown = !is_one_of(invisible, code);
    before_ = shown && code >= first_joining ? Before::joining : Before::other;
    return shown;
  }

  void pass_stray_byte() { before_ = Before::other; }

 private:
  /// What comes before the next character.
  enum class Before {
    joining,   ///< a character that a joiner or a selector may follow
    selected,  ///< such a character and its selector
    other,
  };

  Before before_ = Before::other;
};

}  // namespace

std::string printable(std::string_view text) {
  std::string all;
  all.reserve(text.size());
  Visibility visibility;
  std::size_t size = 0;
  for (std::size_t offset = 0; offset < text.size(); offset += size) {
    size = character_size(text, offset);
    if (size == 0) {
      size = 1;
      visibility.pass_stray_byte();
      all += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[offset]));
      continue;
    }
    const std::string_view character = text.substr(offset, size);
    const char32_t code = character_code(character);
    if (visibility.shows(code)) {
      all += character;
    } else {
      all += spelled_out(code);
    }
  }
  return all;
}

}  // namespace kuv::vemora::embedded_server
