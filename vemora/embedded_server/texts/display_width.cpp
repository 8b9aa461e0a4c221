// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/display_width.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The process itself runs in the locale "C", in which the C library knows ASCII alone.
class Unicode_Locale {
 public:
  Unicode_Locale() : locale_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}
  ~Unicode_Locale() {
    if (locale_ != nullptr) {
      ::freelocale(locale_);
    }
  }
  Unicode_Locale(const Unicode_Locale&) = delete;
  Unicode_Locale& operator=(const Unicode_Locale&) = delete;

  /// 1 if nothing is known about the character.
  std::size_t width_of(char32_t code) const {
    if (locale_ == nullptr) {
      return 1;
    }
    const locale_t before = ::uselocale(locale_);
    const int width = ::wcwidth(static_cast<wchar_t>(code));
    ::uselocale(before);
    return width < 0 ? 1 : static_cast<std::size_t>(width);
  }

 private:
  locale_t locale_;
};

struct Character {
  std::size_t size;
  std::size_t width;
};

/// A byte that is no UTF-8 takes a column.
Character character_at(std::string_view text, std::size_t offset) {
  const std::size_t size = character_size(text, offset);
  if (size <= 1) {
    return {1, 1};
  }
  static const Unicode_Locale unicode;  // opened by the first text that is not ASCII
  return {size, unicode.width_of(character_code(text.substr(offset, size)))};
}

}  // namespace

std::size_t display_width(std::string_view text) {
  std::size_t width = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const Character next = character_at(text, offset);
    width += next.width;
    offset += next.size;
  }
  return width;
}

std::string_view first_columns(std::string_view text, std::size_t columns) {
  std::size_t width = 0;
  std::size_t offset = 0;
  while (offset < text.size()) {
    const Character next = character_at(text, offset);
    width += next.width;
    if (width > columns) {
      break;
    }
    offset += next.size;
  }
  return text.substr(0, offset);
}

std::string shortened_to(std::string_view text, std::size_t columns) {
  constexpr std::string_view dots = "...";
  const std::string_view fitting = first_columns(text, columns);
  if (fitting.size() == text.size()) {
    return std::string(text);
  }
  if (columns <= dots.size()) {
    return std::string(fitting);
  }
  return std::string(first_columns(text, columns - dots.size())) + std::string(dots);
}

}  // namespace kuv::vemora::embedded_server
