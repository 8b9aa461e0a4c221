// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/reader.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/documents/document_fault.h"
#include "vemora/operations/match/event.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// Events that cannot be read, or a line that is no event.
class VEMORA_API Event_Error : public std::runtime_error {
 public:
  /// `its_line` is the text of the line that the fault is in.
  explicit Event_Error(const embedded_server::Document_Fault& fault, std::string its_line = {})
      : std::runtime_error(fault.message), location(fault.location), line(std::move(its_line)) {}

  embedded_server::Location location;  ///< of the fault
  std::string line;                    ///< the text of the line, as far as it is known
};

/// Reads events from a file, a JSON object a line: {"camera": 10, "topic": "..."},
/// {"camera": 10, "object": "person", "inMotion": true}, {"camera": 10, "motion": true} or
/// {"subscription": 3}. Lines with nothing but white space are passed over.
class VEMORA_API Event_Reader {
 public:
  /// "-" is standard input. Throws Event_Error.
  explicit Event_Reader(const std::string& path);

  /// Nothing at the end. Throws Event_Error.
  std::optional<Event> next();

 private:
  struct Close {
    void operator()(std::FILE* file) const;
  };

  bool fill();
  std::optional<std::string_view> next_line();
  Event parse(std::string_view line);
  [[noreturn]] void reject(std::string_view line) const;

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;
  std::vector<char> piece_;
  std::size_t begin_ = 0;  ///< of what was not looked at yet in the piece
  std::size_t end_ = 0;
  std::string line_;
  std::size_t number_ = 0;
  std::unique_ptr<Json::CharReader> reader_;
};

}  // namespace kuv::vemora::operations
