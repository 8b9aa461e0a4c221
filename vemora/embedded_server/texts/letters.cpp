#include "vemora/embedded_server/texts/letters.h"

#include <algorithm>

namespace kuv::vemora::embedded_server {
namespace {

struct Byte_Range {
  unsigned char first;
  unsigned char last;

  bool has(char byte) const {
    const auto value = static_cast<unsigned char>(byte);
    return first <= value && value <= last;
  }
};

/// Letters that begin alike: how long they are and what may come second. Whatever follows is a
/// plain continuation.
struct Letter_Form {
  std::size_t size;
  Byte_Range lead;
  Byte_Range second;
};

constexpr Byte_Range continuation{0x80, 0xBF};

constexpr Letter_Form forms[] = {
    {2, {0xC2, 0xDF}, continuation},
    {3, {0xE0, 0xE0}, {0xA0, 0xBF}},  // not what two bytes can say
    {3, {0xE1, 0xEC}, continuation},
    {3, {0xED, 0xED}, {0x80, 0x9F}},  // no halves of surrogate pairs
    {3, {0xEE, 0xEF}, continuation},
    {4, {0xF0, 0xF0}, {0x90, 0xBF}},  // not what three bytes can say
    {4, {0xF1, 0xF3}, continuation},
    {4, {0xF4, 0xF4}, {0x80, 0x8F}},  // nothing behind U+10FFFF
};

bool has_form(std::string_view bytes, const Letter_Form& form) {
  return bytes.size() >= form.size && form.lead.has(bytes[0]) && form.second.has(bytes[1]) &&
         std::all_of(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(form.size),
                     [](char byte) { return continuation.has(byte); });
}

std::size_t step_at(std::string_view text, std::size_t place) {
  return std::max<std::size_t>(letter_size(text, place), 1);
}

}  // namespace

std::size_t letter_size(std::string_view text, std::size_t place) {
  if (place >= text.size()) {
    return 0;
  }
  if (static_cast<unsigned char>(text[place]) < 0x80) {
    return 1;
  }
  const std::string_view rest = text.substr(place);
  const auto* const found =
      std::find_if(std::begin(forms), std::end(forms),
                   [rest](const Letter_Form& form) { return has_form(rest, form); });
  return found == std::end(forms) ? 0 : found->size;
}

bool is_utf8(std::string_view text) {
  std::size_t place = 0;
  while (place < text.size()) {
    const std::size_t size = letter_size(text, place);
    if (size == 0) {
      return false;
    }
    place += size;
  }
  return true;
}

std::size_t count_letters(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t place = 0; place < text.size(); place += step_at(text, place)) {
    ++count;
  }
  return count;
}

std::string_view first_letters(std::string_view text, std::size_t count) {
  std::size_t place = 0;
  for (; count > 0 && place < text.size(); --count) {
    place += step_at(text, place);
  }
  return text.substr(0, place);
}

std::size_t byte_order_mark_size(std::string_view text) {
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  return text.substr(0, mark.size()) == mark ? mark.size() : 0;
}

}  // namespace kuv::vemora::embedded_server
