#include "vemora/embedded_server/host/json_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

#include "vemora/embedded_server/host/strict_json.h"

namespace kuv::vemora::embedded_server {
namespace {

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

std::size_t offset_of(const Json::Value& part) {
  return static_cast<std::size_t>(part.getOffsetStart());
}

Json::Value parse(const Document_Text& text) {
  try {
    return read_strict_json(text.text());
  } catch (const Json_Syntax_Error& error) {
    const Location location = text.locate(error.offset);
    throw Document_Error({error.message, location}, text.line(location.line));
  }
}

[[noreturn]] void fail_to_read(const std::string& name, const std::string& reason) {
  throw Document_Error({fmt::format("Cannot read {}: {}.", name, reason), {}});
}

std::string read_all(std::FILE* file, const std::string& name) {
  std::string text;
  std::array<char, std::size_t{64} << 10> block{};
  std::size_t count = 0;
  while ((count = std::fread(block.data(), 1, block.size(), file)) != 0) {
    text.append(block.data(), count);
    if (text.size() > Json_Document::largest_size) {
      fail_to_read(name, fmt::format("it is larger than {} MiB", Json_Document::largest_size >> 20));
    }
  }
  if (std::ferror(file) != 0) {
    fail_to_read(name, std::generic_category().message(errno));
  }
  return text;
}

/// Where the text begins whose closing quote stands at `end`: before it, every quote is escaped.
std::size_t begin_of_key(const std::string& text, std::size_t end) {
  std::size_t begin = end;
  std::size_t backslashes = 0;
  do {
    begin = text.rfind('"', begin - 1);
    backslashes = begin - (text.find_last_not_of('\\', begin - 1) + 1);
  } while (backslashes % 2 != 0);
  return begin;
}

}  // namespace

Document_Text::Document_Text(std::string text) : text_(std::move(text)), line_begins_{0} {
  for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n', end)) {
    line_begins_.push_back(++end);
  }
}

Location Document_Text::locate(std::size_t offset) const {
  const auto next = std::upper_bound(line_begins_.begin(), line_begins_.end(), offset);
  return {static_cast<std::size_t>(next - line_begins_.begin()), offset - *std::prev(next) + 1};
}

std::string_view Document_Text::line(std::size_t number) const {
  if (number == 0 || number > line_begins_.size()) {
    return {};
  }
  const std::size_t begin = line_begins_[number - 1];
  std::string_view found = std::string_view(text_).substr(begin, text_.find('\n', begin) - begin);
  if (!found.empty() && found.back() == '\r') {
    found.remove_suffix(1);
  }
  return found;
}

Json_Document::Json_Document(std::string text) : text_(std::move(text)), value_(parse(text_)) {}

Location Json_Document::locate(const Json::Value& part) const {
  return text_.locate(offset_of(part));
}

Location Json_Document::locate_key(const Json::Value& member) const {
  const std::size_t end = text().rfind('"', text().rfind(':', offset_of(member)));
  return text_.locate(begin_of_key(text(), end));
}

std::string read_document_file(const std::string& path) {
  if (path == "-") {
    return read_all(stdin, "standard input");
  }
  const std::unique_ptr<std::FILE, Closer> file(std::fopen(path.c_str(), "rbe"));
  if (!file) {
    fail_to_read(path, std::generic_category().message(errno));
  }
  return read_all(file.get(), path);
}

}  // namespace kuv::vemora::embedded_server
