#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/documents/document_fault.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A place in a text, in bytes and as people count.
struct Text_Place {
  std::size_t offset = 0;
  Location location;  ///< line 0: no place
};

/// What surrounds a place in its line.
struct Surroundings {
  std::string_view before;
  std::string_view behind;
};

/// Knows lines and columns of a text without reading it from its beginning each time, so that a
/// document with a fault at every step is told of in a moment. Asked with the text it was made for.
class VEMORA_API Text_Places {
 public:
  explicit Text_Places(std::string_view text);

  Location locate(std::string_view text, std::size_t offset) const;

  /// The same, in a few steps where it lies close behind `last`, which becomes the place found.
  Location locate(std::string_view text, std::size_t offset, Text_Place& last) const;

  /// What stands in the line of a place before it, and from it on: some hundred bytes of either,
  /// whole letters before it.
  Surroundings surroundings(std::string_view text, const Location& place) const;

  /// Where a line begins, counted from 1; behind the text when there is none.
  std::size_t begin_of_line(std::string_view text, std::size_t number) const;

 private:
  const Text_Place& milestone_before(std::size_t offset) const;

  std::vector<Text_Place> milestones_;  ///< a few thousand bytes from one to the next
};

}  // namespace kuv::vemora::embedded_server
