#include "vemora/operations/warnings/foreign_bytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

#include "vemora/embedded_server/documents/text_encoding.h"
#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::character_size;
using embedded_server::Json_Document;

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

/// What a place in a document belongs to.
class Elements {
 public:
  void add(const Json::Value& element, Subject subject, bool is_judged) {
    elements_.push_back({element.getOffsetStart(), element.getOffsetLimit(), subject, is_judged});
  }

  struct Element {
    std::ptrdiff_t begin;
    std::ptrdiff_t end;
    Subject subject;
    bool is_judged;
  };

  /// Null when it belongs to none of them.
  const Element* at(std::size_t offset) const {
    const auto place = static_cast<std::ptrdiff_t>(offset);
    const auto behind = std::upper_bound(
        elements_.begin(), elements_.end(), place,
        [](std::ptrdiff_t wanted, const Element& element) { return wanted < element.begin; });
    if (behind == elements_.begin() || place >= std::prev(behind)->end) {
      return nullptr;
    }
    return &*std::prev(behind);
  }

 private:
  std::vector<Element> elements_;
};

void warn_in(const Json_Document& document, const Elements& elements, Found_Warnings& found) {
  const char* const looks = embedded_server::looks_like_latin_1(document.text())
                                ? "the document looks like Latin-1, save it as UTF-8"
                                : "save the document as UTF-8";
  const std::size_t mark = embedded_server::byte_order_mark_size(document.text());
  find_texts(document.text(), [&](std::size_t begin, unsigned char first) {
    const std::size_t offset = begin - mark;
    const Elements::Element* const element = elements.at(offset);
    if (element == nullptr || element->is_judged) {
      found.at_offset(
          "not-utf8", document, offset, element == nullptr ? Subject() : element->subject,
          fmt::format("This text has bytes that are no UTF-8, the first one 0x{:02X}; {}.", first,
                      looks));
    }
  });
}

}  // namespace

void warn_of_foreign_bytes(const embedded_server::Read_Documents& documents,
                           const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  if (has_foreign_bytes(documents.config.text())) {
    Elements elements;
    for (const Judged_Trigger& trigger : triggers) {
      elements.add(trigger.element, trigger.subject, trigger.is_ours);
    }
    warn_in(documents.config, elements, found);
  }
  if (has_foreign_bytes(documents.mapping.text())) {
    Elements elements;
    const Json::Value& mapping = documents.mapping.value();
    if (mapping.isObject() && mapping["triggerMapping"].isArray()) {
      std::size_t index = 0;
      for (const Json::Value& association : mapping["triggerMapping"]) {
        elements.add(association, {index++}, true);
      }
    }
    warn_in(documents.mapping, elements, found);
  }
}

}  // namespace kuv::vemora::operations
