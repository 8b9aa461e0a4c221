// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_document.h"

#include <fmt/format.h>
#include <json/reader.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <utility>

#include "vemora/embedded_server/documents/json_grammar.h"
#include "vemora/embedded_server/documents/json_tree.h"
#include "vemora/embedded_server/documents/read_file.h"
#include "vemora/embedded_server/documents/text_encoding.h"
#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The offset that the JSON reader means. It counts bytes after a byte order mark, and regards a
/// carriage return as the end of a line.
std::size_t offset_from_reader(std::string_view text, std::size_t line, std::size_t column) {
  std::size_t offset = byte_order_mark_size(text);
  for (std::size_t passed = 1; passed < line && offset < text.size(); ++passed) {
    offset = std::min(text.find_first_of("\r\n", offset), text.size() - 1) + 1;
    if (text[offset - 1] == '\r' && offset < text.size() && text[offset] == '\n') {
      ++offset;
    }
  }
  return offset + column - 1;
}

/// The JSON reader reports faults only as text: "* Line 3, Column 7\n  What is wrong\n". Further
/// faults follow in the same form.
Document_Fault fault_in_report(const std::string& report, std::string_view text,
                               const Text_Locations& locations) {
  std::size_t line = 0;
  std::size_t column = 0;
  int head = 0;
  if (std::sscanf(report.c_str(), "* Line %zu, Column %zu\n%n", &line, &column, &head) != 2) {
    return {report, {}};
  }
  std::string message = report.substr(static_cast<std::size_t>(head));
  message.erase(std::min(message.find("\n* Line "), message.find_last_not_of('\n') + 1));
  return {message, locations.locate(text, offset_from_reader(text, line, column))};
}

std::string_view line_of(std::string_view text, const Text_Locations& locations,
                         std::size_t number) {
  std::string_view found = text.substr(locations.begin_of_line(text, number));
  found = found.substr(0, found.find('\n'));
  if (!found.empty() && found.back() == '\r') {
    found.remove_suffix(1);
  }
  return found;
}

/// Decides about a text that was not read in one pass: finds what is wrong with it, and where.
Json::Value parse_carefully(const std::string& text, const Text_Locations& locations,
                            std::size_t most_values) {
  const auto reject = [&](const Document_Fault& fault) {
    throw Document_Error(fault, line_of(text, locations, fault.location.line));
  };
  if (const auto fault = find_grammar_fault(text, most_values)) {
    reject({fault->message, locations.locate(text, fault->offset)});
  }
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["stackLimit"] = Json::UInt64(deepest_nesting);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  std::string report;
  if (!reader->parse(text.data(), text.data() + text.size(), &value, &report)) {
    reject(fault_in_report(report, text, locations));
  }
  return value;
}

std::size_t count_separators(std::string_view text) {
  std::size_t count = 0;
  for (const char letter : text) {
    count += letter == ',' || letter == '[' || letter == '{' ? 1 : 0;
  }
  return count;
}

/// Whether a text has so many separators that it may have more values than that. A text with too
/// many is refused before memory is used for any.
bool may_exceed(std::string_view text, std::size_t most_values) {
  constexpr std::size_t stride = 64;    // a fixed number, so that compilers count many at a time
  if (text.size() / 2 < most_values) {  // of each two bytes, one separates values
    return false;
  }
  std::size_t values = 1;
  for (; text.size() >= stride; text.remove_prefix(stride)) {
    unsigned char separators = 0;
    for (std::size_t place = 0; place < stride; ++place) {
      const char letter = text[place];
      separators += static_cast<unsigned char>((letter == ',') | (letter == '[') | (letter == '{'));
    }
    values += separators;
  }
  return values + count_separators(text) > most_values;
}

Json::Value parse(const std::string& text, const Text_Locations& locations,
                  std::size_t most_values) {
  if (const std::string_view encoding = wide_encoding(text); !encoding.empty()) {
    throw Document_Error({fmt::format("The file is {}; save it as UTF-8.", encoding), {}});
  }
  std::optional<Json::Value> tree;
  if (!may_exceed(text, most_values)) {
    tree = read_json_tree(text, most_values);
  }
  return tree ? *std::move(tree) : parse_carefully(text, locations, most_values);
}

}  // namespace

Json_Document::Json_Document(std::string text, std::size_t most_values)
    : text_(std::move(text)), locations_(text_), value_(parse(text_, locations_, most_values)) {}

Json_Document Json_Document::read(const std::string& path, std::size_t limit,
                                  std::size_t most_values) {
  return Json_Document(read_file(path, limit), most_values);
}

std::size_t Json_Document::offset_of(const Json::Value& part) const {
  return byte_order_mark_size(text_) + static_cast<std::size_t>(part.getOffsetStart());
}

Location Json_Document::locate(const Json::Value& part) const {
  return locations_.locate(text_, offset_of(part));
}

Location Json_Document::locate_offset(std::size_t offset, Text_Position& last) const {
  return locations_.locate(text_, byte_order_mark_size(text_) + offset, last);
}

Surroundings Json_Document::surroundings(const Location& location) const {
  return locations_.surroundings(text_, location);
}

Location Json_Document::locate_key(const Json::Value& member) const {
  Text_Position nowhere;
  return locate_offset(key_offset(member), nowhere);
}

std::size_t Json_Document::key_offset(const Json::Value& member) const {
  // Before the value are a colon, the quote that ends the key, and the quote that begins it. The
  // latter is the next one that is not escaped: an even number of backslashes precedes it.
  const std::size_t colon = text_.rfind(':', offset_of(member) - 1);
  const std::size_t end = text_.rfind('"', colon);
  std::size_t begin = end;
  std::size_t backslashes = 0;
  do {
    begin = text_.rfind('"', begin - 1);
    backslashes = begin - (text_.find_last_not_of('\\', begin - 1) + 1);
  } while (backslashes % 2 != 0);
  return begin - byte_order_mark_size(text_);
}

std::string_view Json_Document::line(std::size_t number) const {
  return line_of(text_, locations_, number);
}

}  // namespace kuv::vemora::embedded_server
