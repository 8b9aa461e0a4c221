#pragma once

#include <json/value.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

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
  explicit Document_Error(const Document_Fault& fault, std::string_view line = {})
      : std::runtime_error(fault.message), location(fault.location), line(line) {}

  Location location;
  std::string line;  ///< the one that the location is in
};

/// A text in which places are counted in lines and columns.
class VEMORA_API Document_Text {
 public:
  explicit Document_Text(std::string text);

  const std::string& text() const { return text_; }

  /// The place of a byte.
  Location locate(std::size_t offset) const;

  /// A line, counted from 1, without its end; empty when there is none. Valid as long as this.
  std::string_view line(std::size_t number) const;

 private:
  std::string text_;
  std::vector<std::size_t> line_begins_;
};

/// A JSON document with its own text, so that it can be stored as it was written and faults found
/// in it have a place. Read to the letter: an object or array at the root and nothing behind it, no
/// comments, no key twice.
class VEMORA_API Json_Document {
 public:
  /// Larger ones are none that anybody wrote, and memory is better used.
  static constexpr std::size_t largest_size = std::size_t{256} << 20;

  /// Throws Document_Error.
  explicit Json_Document(std::string text);

  const std::string& text() const { return text_.text(); }
  const Json::Value& value() const { return value_; }

  /// Where a value of this document begins.
  Location locate(const Json::Value& part) const;

  /// Where the key of a member of this document's objects begins.
  Location locate_key(const Json::Value& member) const;

  std::string_view line(std::size_t number) const { return text_.line(number); }

 private:
  Document_Text text_;
  Json::Value value_;
};

/// The content of a file; "-" is standard input. Throws Document_Error.
VEMORA_API std::string read_document_file(const std::string& path);

}  // namespace kuv::vemora::embedded_server
