// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/text_locations.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

/// In bytes, from one milestone to the next.
constexpr std::size_t distance = 4096;

/// In bytes; more than is ever shown of a line.
constexpr std::size_t shown_at_most = 512;

/// Moves one character forward.
void advance(std::string_view text, Text_Position& position) {
  if (text[position.offset] == '\n') {
    ++position.location.line;
    position.location.column = 0;
  }
  ++position.location.column;
  position.offset += std::max<std::size_t>(character_size(text, position.offset), 1);
}

/// Moves forward by this many bytes if all of them are ASCII, and otherwise not at all.
constexpr std::size_t stride = 64;

bool advance_over_ascii(std::string_view text, Text_Position& position) {
  if (text.size() - position.offset < stride) {
    return false;
  }
  const std::string_view block = text.substr(position.offset, stride);
  unsigned char all_bits = 0;
  unsigned char line_ends = 0;
  for (std::size_t place = 0; place < stride;
       ++place) {  // a fixed number: is made fast by compilers
    all_bits |= static_cast<unsigned char>(block[place]);
    line_ends += block[place] == '\n' ? 1 : 0;
  }
  if (all_bits >= 0x80) {
    return false;
  }
  position.location.line += line_ends;
  position.location.column =
      line_ends == 0 ? position.location.column + stride : stride - block.rfind('\n');
  position.offset += stride;
  return true;
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

Text_Locations::Text_Locations(std::string_view text) {
  Text_Position position{byte_order_mark_size(text), {1, 1}};
  milestones_.push_back(position);
  while (position.offset < text.size()) {
    if (!advance_over_ascii(text, position)) {
      advance(text, position);
    }
    if (position.offset >= milestones_.back().offset + distance) {
      milestones_.push_back(position);
    }
  }
}

const Text_Position& Text_Locations::milestone_before(std::size_t wanted) const {
  const auto after = std::upper_bound(
      std::next(milestones_.begin()), milestones_.end(), wanted,
      [](std::size_t offset, const Text_Position& milestone) { return offset < milestone.offset; });
  return *std::prev(after);
}

Location Text_Locations::locate(std::string_view text, std::size_t wanted) const {
  Text_Position nowhere;
  return locate(text, wanted, nowhere);
}

Location Text_Locations::locate(std::string_view text, std::size_t wanted,
                                Text_Position& last) const {
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

Surroundings Text_Locations::surroundings(std::string_view text, const Location& wanted) const {
  const auto after = std::upper_bound(std::next(milestones_.begin()), milestones_.end(), wanted,
                                      [](const Location& location, const Text_Position& milestone) {
                                        return is_before(location, milestone.location);
                                      });
  Text_Position position = *std::prev(after);
  while (position.offset < text.size() && is_before(position.location, wanted)) {
    advance(text, position);
  }
  const std::size_t begin =
      milestone_before(position.offset - std::min(position.offset, shown_at_most)).offset;
  std::string_view before = text.substr(begin, position.offset - begin);
  before.remove_prefix(before.rfind('\n') + 1);  // removes nothing if there is no line end
  return {before, rest_of_line(text, position.offset)};
}

std::size_t Text_Locations::begin_of_line(std::string_view text, std::size_t number) const {
  const auto after = std::lower_bound(std::next(milestones_.begin()), milestones_.end(), number,
                                      [](const Text_Position& milestone, std::size_t line) {
                                        return milestone.location.line < line;
                                      });
  auto [offset, location] = *std::prev(after);
  while (location.line < number && offset < text.size()) {
    offset = std::min(text.find('\n', offset), text.size() - 1) + 1;
    ++location.line;
  }
  return location.line == number ? offset : text.size();
}

}  // namespace kuv::vemora::embedded_server
