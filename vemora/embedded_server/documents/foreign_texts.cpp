// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/foreign_texts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "vemora/embedded_server/documents/text_encoding.h"
#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Where the next byte is that is not ASCII, eight at a time: hardly any document has one.
std::size_t skip_ascii(std::string_view text, std::size_t place) {
  constexpr std::uint64_t high_bits = 0x8080808080808080;
  std::uint64_t block = 0;
  while (place + sizeof(block) <= text.size()) {
    std::memcpy(&block, text.data() + place, sizeof(block));
    if ((block & high_bits) != 0) {
      break;
    }
    place += sizeof(block);
  }
  while (place < text.size() && static_cast<unsigned char>(text[place]) < 0x80) {
    ++place;
  }
  return place;
}

bool has_foreign_bytes(std::string_view text) {
  for (std::size_t place = skip_ascii(text, 0); place < text.size();
       place = skip_ascii(text, place)) {
    const std::size_t size = character_size(text, place);
    if (size == 0) {
      return true;
    }
    place += size;
  }
  return false;
}

/// Calls `tell` with where each text of a document begins that has such bytes, and the first one.
/// The document keeps to the grammar of JSON, so that other bytes are in texts alone.
template <class Tell>
void find_texts(std::string_view document, Tell tell) {
  std::size_t begin = std::string_view::npos;  // of the text that `place` is in
  bool is_told = false;
  for (std::size_t place = 0; place < document.size();) {
    const char letter = document[place];
    const bool in_text = begin != std::string_view::npos;
    if (letter == '"') {
      begin = in_text ? std::string_view::npos : place;
      is_told = false;
      ++place;
    } else if (letter == '\\') {
      place += 2;
    } else {
      const std::size_t size = character_size(document, place);
      if (size == 0 && in_text && !is_told) {
        tell(begin, static_cast<unsigned char>(letter));
        is_told = true;
      }
      place += std::max<std::size_t>(size, 1);
    }
  }
}

}  // namespace

std::vector<Foreign_Text> foreign_texts(const Json_Document& document) {
  std::vector<Foreign_Text> found;
  if (!has_foreign_bytes(document.text())) {
    return found;
  }
  const char* const how_to_mend = how_to_mend_foreign_texts(document);
  const std::size_t mark = byte_order_mark_size(document.text());
  find_texts(document.text(), [&](std::size_t begin, unsigned char first) {
    found.push_back(
        {begin - mark, fmt::format("This text has bytes that are no UTF-8, the first one 0x{:02X}; "
                                   "{}.",
                                   first, how_to_mend)});
  });
  return found;
}

const char* how_to_mend_foreign_texts(const Json_Document& document) {
  return looks_like_latin_1(document.text()) ? "the document looks like Latin-1, save it as UTF-8"
                                             : "save the document as UTF-8";
}

}  // namespace kuv::vemora::embedded_server
