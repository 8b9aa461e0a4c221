#include "vemora/embedded_server/documents/text_places.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "vemora/embedded_server/texts/letters.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::size_t distance = 4096;

/// Bytes that more letters fit in than anybody shows of a line.
constexpr std::size_t shown_at_most = 512;

/// One letter further.
void advance(std::string_view text, Text_Place& place) {
  if (text[place.offset] == '\n') {
    ++place.location.line;
    place.location.column = 0;
  }
  ++place.location.column;
  place.offset += std::max<std::size_t>(letter_size(text, place.offset), 1);
}

bool is_before(const Location& left, const Location& right) {
  return std::tie(left.line, left.column) < std::tie(right.line, right.column);
}

std::string_view rest_of_line(std::string_view text, std::size_t offset) {
  std::string_view rest = text.substr(offset, shown_at_most);
  rest = rest.substr(0, rest.find('\n'));
  if (!rest.empty() && rest.back() == '\r') {
    rest.remove_suffix(1);
  }
  return rest;
}

}  // namespace

Text_Places::Text_Places(std::string_view text) {
  Text_Place place{byte_order_mark_size(text), {1, 1}};
  milestones_.push_back(place);
  while (place.offset < text.size()) {
    advance(text, place);
    if (place.offset >= milestones_.back().offset + distance) {
      milestones_.push_back(place);
    }
  }
}

const Text_Place& Text_Places::milestone_before(std::size_t wanted) const {
  const auto behind = std::upper_bound(
      std::next(milestones_.begin()), milestones_.end(), wanted,
      [](std::size_t offset, const Text_Place& milestone) { return offset < milestone.offset; });
  return *std::prev(behind);
}

Location Text_Places::locate(std::string_view text, std::size_t wanted) const {
  Text_Place nowhere;
  return locate(text, wanted, nowhere);
}

Location Text_Places::locate(std::string_view text, std::size_t wanted, Text_Place& last) const {
  const bool is_near =
      last.location.line != 0 && last.offset <= wanted && wanted - last.offset <= distance;
  if (!is_near) {
    last = milestone_before(wanted);
  }
  while (last.offset < std::min(wanted, text.size())) {
    advance(text, last);
  }
  return last.location;
}

Surroundings Text_Places::surroundings(std::string_view text, const Location& wanted) const {
  const auto behind = std::upper_bound(std::next(milestones_.begin()), milestones_.end(), wanted,
                                       [](const Location& location, const Text_Place& milestone) {
                                         return is_before(location, milestone.location);
                                       });
  Text_Place place = *std::prev(behind);
  while (place.offset < text.size() && is_before(place.location, wanted)) {
    advance(text, place);
  }
  const std::size_t begin =
      milestone_before(place.offset - std::min(place.offset, shown_at_most)).offset;
  std::string_view before = text.substr(begin, place.offset - begin);
  before.remove_prefix(before.rfind('\n') + 1);  // of none, nothing
  return {before, rest_of_line(text, place.offset)};
}

std::size_t Text_Places::begin_of_line(std::string_view text, std::size_t number) const {
  const auto behind = std::lower_bound(
      std::next(milestones_.begin()), milestones_.end(), number,
      [](const Text_Place& milestone, std::size_t line) { return milestone.location.line < line; });
  auto [offset, location] = *std::prev(behind);
  while (location.line < number && offset < text.size()) {
    offset = std::min(text.find('\n', offset), text.size() - 1) + 1;
    ++location.line;
  }
  return location.line == number ? offset : text.size();
}

}  // namespace kuv::vemora::embedded_server
