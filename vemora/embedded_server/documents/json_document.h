// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "vemora/embedded_server/documents/document_fault.h"
#include "vemora/embedded_server/documents/json_grammar.h"
#include "vemora/embedded_server/documents/text_locations.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The maximum size of a document in bytes: about half of what a field of the database can hold.
constexpr std::size_t largest_document = std::size_t{512} << 20;

/// Thrown for a document that cannot be read at all.
class VEMORA_API Document_Error : public std::runtime_error {
 public:
  /// `its_line` is the line of the document that the fault is in.
  explicit Document_Error(const Document_Fault& fault, std::string_view its_line = {})
      : std::runtime_error(fault.message), location(fault.location), line(its_line) {}

  Location location;  ///< of the fault
  std::string line;   ///< with the fault; empty if not known
};

/// A JSON document with its text, so that it can be stored as it was written and faults found in it
/// can be located. It is read strictly: the exact grammar of JSON, an object or an array at the
/// root and nothing after it, no duplicate keys.
class VEMORA_API Json_Document {
 public:
  /// Throws Document_Error; also if there are more than `most_values` values.
  explicit Json_Document(std::string text, std::size_t most_values = default_most_values);

  /// Reads a file; "-" is standard input. Throws Document_Error; also if there are more than
  /// `limit` bytes or more than `most_values` values.
  static Json_Document read(const std::string& path, std::size_t limit = largest_document,
                            std::size_t most_values = default_most_values);

  /// As it was written, byte for byte.
  const std::string& text() const { return text_; }
  /// As it was read.
  const Json::Value& value() const { return value_; }

  /// The location where a value of this document begins.
  Location locate(const Json::Value& part) const;

  /// The same for the offset of a value (Json::Value::getOffsetStart). Fast if the offset is soon
  /// after `last`, which becomes the position found.
  Location locate_offset(std::size_t offset, Text_Position& last) const;

  /// The location where the key of a member begins, given the member's value.
  Location locate_key(const Json::Value& member) const;

  /// The same as an offset, counted as Json::Value::getOffsetStart does.
  std::size_t key_offset(const Json::Value& member) const;

  /// The text around a location in its line, as much of it as is worth showing.
  Surroundings surroundings(const Location& location) const;

  /// A line of the text, counted from 1, without its line end; empty if there is no such line.
  std::string_view line(std::size_t number) const;

 private:
  std::size_t offset_of(const Json::Value& part) const;

  std::string text_;
  Text_Locations locations_;
  Json::Value value_;
};

}  // namespace kuv::vemora::embedded_server
