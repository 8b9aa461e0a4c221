#include "vemora/embedded_server/host/text_places.h"

#include <algorithm>
#include <iterator>

#include "vemora/embedded_server/texts/letters.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::size_t distance = 4096;

/// One letter further.
void advance(std::string_view text, std::size_t& offset, Location& location) {
  if (text[offset] == '\n') {
    ++location.line;
    location.column = 0;
  }
  ++location.column;
  offset += std::max<std::size_t>(letter_size(text, offset), 1);
}

}  // namespace

Text_Places::Text_Places(std::string_view text) {
  std::size_t offset = byte_order_mark_size(text);
  Location location{1, 1};
  milestones_.push_back({offset, location});
  while (offset < text.size()) {
    advance(text, offset, location);
    if (offset >= milestones_.back().offset + distance) {
      milestones_.push_back({offset, location});
    }
  }
}

Location Text_Places::locate(std::string_view text, std::size_t wanted) const {
  const auto behind = std::upper_bound(
      std::next(milestones_.begin()), milestones_.end(), wanted,
      [](std::size_t offset, const Milestone& milestone) { return offset < milestone.offset; });
  auto [offset, location] = *std::prev(behind);
  while (offset < std::min(wanted, text.size())) {
    advance(text, offset, location);
  }
  return location;
}

std::size_t Text_Places::begin_of_line(std::string_view text, std::size_t number) const {
  const auto behind = std::lower_bound(
      std::next(milestones_.begin()), milestones_.end(), number,
      [](const Milestone& milestone, std::size_t line) { return milestone.location.line < line; });
  auto [offset, location] = *std::prev(behind);
  while (location.line < number && offset < text.size()) {
    offset = std::min(text.find('\n', offset), text.size() - 1) + 1;
    ++location.line;
  }
  return location.line == number ? offset : text.size();
}

}  // namespace kuv::vemora::embedded_server
