#include "vemora/embedded_server/host/json_document.h"

#include <json/reader.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>

namespace kuv::vemora::embedded_server {
namespace {

/// The reader tells its faults as text alone: "* Line 3, Column 7\n  What is wrong\n".
Document_Fault first_fault(const std::string& report) {
  std::istringstream stream(report);
  std::string line;
  std::getline(stream, line);
  Location location;
  if (std::sscanf(line.c_str(), "* Line %zu, Column %zu", &location.line, &location.column) != 2) {
    return {report, {}};
  }
  std::string message;
  std::getline(stream >> std::ws, message);
  return {message, location};
}

Json::Value parse(const std::string& text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  std::string report;
  try {
    if (!reader->parse(text.data(), text.data() + text.size(), &value, &report)) {
      throw Document_Error(first_fault(report));
    }
  } catch (const Json::Exception& error) {  // nested too deeply
    throw Document_Error({error.what(), {}});
  }
  return value;
}

std::string read_all(std::istream& stream, const std::string& name) {
  std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
  if (stream.bad()) {
    throw Document_Error({"cannot read " + name, {}});
  }
  return text;
}

}  // namespace

Json_Document::Json_Document(std::string text) : text_(std::move(text)), value_(parse(text_)) {}

Json_Document Json_Document::read(const std::string& path) {
  if (path == "-") {
    return Json_Document(read_all(std::cin, "standard input"));
  }
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    throw Document_Error({"cannot read " + path + ": it is a directory", {}});
  }
  std::ifstream stream(path, std::ios::binary);
  if (!stream) {
    throw Document_Error({"cannot open " + path, {}});
  }
  return Json_Document(read_all(stream, path));
}

Location Json_Document::locate(const Json::Value& part) const {
  const auto offset = std::min(static_cast<std::size_t>(part.getOffsetStart()), text_.size());
  const auto place = text_.begin() + static_cast<std::ptrdiff_t>(offset);
  const auto line = static_cast<std::size_t>(std::count(text_.begin(), place, '\n'));
  const std::size_t line_end = offset == 0 ? std::string::npos : text_.rfind('\n', offset - 1);
  const std::size_t line_begin = line_end == std::string::npos ? 0 : line_end + 1;
  return {line + 1, offset - line_begin + 1};
}

std::string Json_Document::line(std::size_t number) const {
  std::size_t begin = 0;
  for (std::size_t passed = 1; passed < number && begin != std::string::npos; ++passed) {
    const std::size_t end = text_.find('\n', begin);
    begin = end == std::string::npos ? end : end + 1;
  }
  if (number == 0 || begin == std::string::npos) {
    return {};
  }
  std::string found = text_.substr(begin, text_.find('\n', begin) - begin);
  if (!found.empty() && found.back() == '\r') {
    found.pop_back();
  }
  return found;
}

}  // namespace kuv::vemora::embedded_server
