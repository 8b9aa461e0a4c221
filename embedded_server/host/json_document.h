#pragma once

#include <json/value.h>

#include <cstddef>
#include <stdexcept>
#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A place in a text, both counted from 1, columns in bytes; 0 where it is not known.
struct Location {
  std::size_t line = 0;
  std::size_t column = 0;
};

/// What is wrong with a document, and where.
struct Document_Fault {
  std::string message;
  Location location;
};

/// A document that cannot be read at all.
class VEMORA_API Document_Error : public std::runtime_error {
 public:
  explicit Document_Error(Document_Fault fault)
      : std::runtime_error(fault.message), location(fault.location) {}

  Location location;
};

/// A JSON document with its own text, so that it can be stored as it was written and faults found
/// in it have a place. Read strictly: an object or array at the root and nothing behind it, no
/// comments, no duplicate keys.
class VEMORA_API Json_Document {
 public:
  /// Throws Document_Error.
  explicit Json_Document(std::string text);

  /// The content of a file; "-" is standard input. Throws Document_Error.
  static Json_Document read(const std::string& path);

  const std::string& text() const { return text_; }
  const Json::Value& value() const { return value_; }

  /// Where a value of this document begins.
  Location locate(const Json::Value& part) const;

  /// A line of the text, counted from 1, without its end; empty when there is none.
  std::string line(std::size_t number) const;

 private:
  std::string text_;
  Json::Value value_;
};

}  // namespace kuv::vemora::embedded_server
