#pragma once

#include <json/value.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "vemora/embedded_server/documents/document_fault.h"
#include "vemora/embedded_server/documents/json_grammar.h"
#include "vemora/embedded_server/documents/text_places.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many bytes a document may take: about half of what a field of the database can hold.
constexpr std::size_t largest_document = std::size_t{512} << 20;

/// A document that cannot be read at all.
class VEMORA_API Document_Error : public std::runtime_error {
 public:
  explicit Document_Error(const Document_Fault& fault, std::string_view its_line = {})
      : std::runtime_error(fault.message), location(fault.location), line(its_line) {}

  Location location;
  std::string line;  ///< of the fault, as far as it is known
};

/// A JSON document with its own text, so that it can be stored as it was written and faults found
/// in it have a place. Read strictly: the grammar of JSON to the letter, an object or array at the
/// root and nothing behind it, no duplicate keys.
class VEMORA_API Json_Document {
 public:
  /// Throws Document_Error, also where there are more than `most_values` values.
  explicit Json_Document(std::string text, std::size_t most_values = most_values_unless_told);

  /// The content of a file; "-" is standard input. Throws Document_Error, also where there are
  /// more than `limit` bytes, no end of them, or more than `most_values` values.
  static Json_Document read(const std::string& path, std::size_t limit = largest_document,
                            std::size_t most_values = most_values_unless_told);

  const std::string& text() const { return text_; }
  const Json::Value& value() const { return value_; }

  /// Where a value of this document begins.
  Location locate(const Json::Value& part) const;

  /// The same of a value by its offset (Json::Value::getOffsetStart), in a few steps where it lies
  /// close behind `last`, which becomes the place found.
  Location locate_offset(std::size_t offset, Text_Place& last) const;

  /// Where the key of a member of an object of this document begins.
  Location locate_key(const Json::Value& member) const;

  /// The same as an offset, counted as Json::Value::getOffsetStart does.
  std::size_t key_offset(const Json::Value& member) const;

  /// What surrounds a place in its line, as far as people look.
  Surroundings surroundings(const Location& place) const;

  /// A line of the text, counted from 1, without its end; empty when there is none.
  std::string_view line(std::size_t number) const;

 private:
  std::size_t offset_of(const Json::Value& part) const;

  std::string text_;
  Text_Places places_;
  Json::Value value_;
};

}  // namespace kuv::vemora::embedded_server
