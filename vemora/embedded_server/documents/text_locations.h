// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/documents/document_fault.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A position in a text, as an offset in bytes and as a location.
struct Text_Position {
  std::size_t offset = 0;
  Location location;  ///< line 0: not set
};

/// The text around a location in its line.
struct Surroundings {
  std::string_view before;
  std::string_view after;  ///< from the location on
};

/// Finds lines and columns of a text without reading it from the beginning each time, so that a
/// document with very many faults is reported quickly. All functions must be given the text with
/// which the object was constructed.
class VEMORA_API Text_Locations {
 public:
  /// Reads the text once. It is not kept.
  explicit Text_Locations(std::string_view text);

  /// The line and the column of an offset in bytes.
  Location locate(std::string_view text, std::size_t offset) const;

  /// The same. Fast if the offset is soon after `last`, which becomes the position found.
  Location locate(std::string_view text, std::size_t offset, Text_Position& last) const;

  /// The text before and after a location in its line: some hundred bytes of each, beginning with a
  /// whole character.
  Surroundings surroundings(std::string_view text, const Location& location) const;

  /// The offset at which a line begins, counted from 1; the size of the text if there is no such
  /// line.
  std::size_t begin_of_line(std::string_view text, std::size_t number) const;

 private:
  const Text_Position& milestone_before(std::size_t offset) const;

  std::vector<Text_Position> milestones_;  ///< every few thousand bytes
};

}  // namespace kuv::vemora::embedded_server
