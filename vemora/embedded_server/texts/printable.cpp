#include "vemora/embedded_server/texts/printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "vemora/embedded_server/texts/letters.h"

namespace kuv::vemora::embedded_server {
namespace {

struct Code_Range {
  char32_t first;
  char32_t last;

  bool has(char32_t code) const { return first <= code && code <= last; }
};

/// Control characters, and what Unicode calls format characters or lets no font show.
constexpr Code_Range unshown[] = {
    {0x0000, 0x001F},   {0x007F, 0x009F}, {0x00AD, 0x00AD},  // a hyphen that is not there
    {0x034F, 0x034F},                                        // joins nothing
    {0x061C, 0x061C},                                        // turns the direction
    {0x115F, 0x1160},                                        // Hangul that is blank
    {0x17B4, 0x17B5},                                        // Khmer vowels that nobody writes
    {0x200B, 0x200B},                                        // a space without width
    {0x200E, 0x200F},                                        // turn the direction
    {0x2028, 0x202E},                                        // break the line, turn the direction
    {0x2060, 0x206F},    // join words, multiply without a sign, turn the direction
    {0x3164, 0x3164},    // Hangul that is blank
    {0xFEFF, 0xFEFF},    // a byte order mark amid a text
    {0xFFA0, 0xFFA0},    // Hangul that is blank
    {0xFFF0, 0xFFFB},    // annotations
    {0x1BCA0, 0x1BCA3},  // of shorthand
    {0x1D173, 0x1D17A},  // of music
    {0xE0000, 0xE00FF},  // tags: a whole alphabet that nobody sees
    {0xE01F0, 0xE0FFF},  // kept free for more of them
};

constexpr Code_Range selectors[] = {
    {0x180B, 0x180F}, {0xFE00, 0xFE0F}, {0xE0100, 0xE01EF}};  // which form of the letter before

constexpr Code_Range joiners{0x200C, 0x200D};  // whether the letters on both sides join

/// The scripts that know joiners and selectors begin here.
constexpr char32_t first_joining = 0x0600;

template <class Ranges>
bool is_one_of(const Ranges& ranges, char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [code](const Code_Range& range) { return range.has(code); });
}

char32_t code_of(std::string_view letter) {
  const auto lead = static_cast<unsigned char>(letter.front());
  char32_t code = letter.size() == 1 ? lead : lead & (0x7FU >> letter.size());
  for (const char byte : letter.substr(1)) {
    code = code * 64 + (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return code;
}

std::string spelled_out(char32_t code) {
  const auto number = static_cast<std::uint32_t>(code);
  if (number < 0x80) {
    return fmt::format("\\x{:02x}", number);
  }
  return number > 0xFFFF ? fmt::format("\\U{:08x}", number) : fmt::format("\\u{:04x}", number);
}

/// Tells letter by letter what can be shown.
class Showing {
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
    const bool shown = !is_one_of(unshown, code);
    before_ = shown && code >= first_joining ? Before::joining : Before::other;
    return shown;
  }

  void pass_stray_byte() { before_ = Before::other; }

 private:
  /// What stands before the letter that is asked for.
  enum class Before {
    joining,   ///< a letter that a joiner or a selector may follow
    selected,  ///< such a letter and its selector
    other,
  };

  Before before_ = Before::other;
};

}  // namespace

std::string printable(std::string_view text) {
  std::string all;
  all.reserve(text.size());
  Showing showing;
  std::size_t size = 0;
  for (std::size_t place = 0; place < text.size(); place += size) {
    size = letter_size(text, place);
    if (size == 0) {
      size = 1;
      showing.pass_stray_byte();
      all += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[place]));
      continue;
    }
    const std::string_view letter = text.substr(place, size);
    const char32_t code = code_of(letter);
    if (showing.shows(code)) {
      all += letter;
    } else {
      all += spelled_out(code);
    }
  }
  return all;
}

}  // namespace kuv::vemora::embedded_server
