#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/host/document_fault.h"

namespace kuv::vemora::embedded_server {

/// Knows lines and columns of a text without reading it from its beginning each time, so that a
/// document with a fault at every step is told of in a moment. Asked with the text it was made for.
class Text_Places {
 public:
  explicit Text_Places(std::string_view text);

  Location locate(std::string_view text, std::size_t offset) const;

  /// Where a line begins, counted from 1; behind the text when there is none.
  std::size_t begin_of_line(std::string_view text, std::size_t number) const;

 private:
  struct Milestone {
    std::size_t offset;
    Location location;
  };

  std::vector<Milestone> milestones_;  ///< a few thousand bytes from one to the next
};

}  // namespace kuv::vemora::embedded_server
