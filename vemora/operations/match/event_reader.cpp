// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/event_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/documents/json_grammar.h"
#include "vemora/operations/warnings/found_warnings.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Json_Document;
using embedded_server::Location;

/// Beyond it, what is read is no list of events.
constexpr std::size_t longest_line = std::size_t{1} << 20;

constexpr std::size_t most_values_of_an_event = 16;

/// What is wrong with an event, and the value that it is about.
struct Event_Fault {
  std::string message;
  const Json::Value* value;
};

[[noreturn]] void complain(const char* doing, const std::string& name) {
  throw Event_Error(
      {fmt::format("cannot {} {}: {}", doing, name, std::generic_category().message(errno)), {}});
}

std::unique_ptr<Json::CharReader> make_reader() {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  return std::unique_ptr<Json::CharReader>(builder.newCharReader());
}

const Json::Value& required(const Json::Value& object, const char* key) {
  if (!object.isMember(key)) {
    throw Event_Fault{fmt::format("The event has no \"{}\".", key), &object};
  }
  return object[key];
}

std::uint64_t id_in(const Json::Value& object, const char* key) {
  const Json::Value& id = required(object, key);
  if (!id.isUInt64()) {
    throw Event_Fault{fmt::format("\"{}\" must be an unsigned 64-bit integer.", key), &id};
  }
  return id.asUInt64();
}

std::string text_in(const Json::Value& object, const char* key) {
  const Json::Value& text = required(object, key);
  if (!text.isString() || text.asString().empty()) {
    throw Event_Fault{fmt::format("\"{}\" must be a string that is not empty.", key), &text};
  }
  return text.asString();
}

bool flag_in(const Json::Value& object, const char* key) {
  const Json::Value& flag = required(object, key);
  if (!flag.isBool()) {
    throw Event_Fault{fmt::format("\"{}\" must be true or false.", key), &flag};
  }
  return flag.asBool();
}

/// No key but these: a misspelt one would make it another event.
void require_keys(const Json::Value& object, std::initializer_list<std::string_view> known) {
  for (auto member = object.begin(); member != object.end(); ++member) {
    const std::string key = member.name();
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      throw Event_Fault{fmt::format("An event of this kind has no key {}.", in_quotes(key)),
                        &*member};
    }
  }
}

/// Throws Event_Fault.
Event event_in(const Json::Value& object) {
  using Kind = Event::Kind;
  if (!object.isObject()) {
    throw Event_Fault{"An event must be a JSON object.", &object};
  }
  if (object.isMember("subscription")) {
    require_keys(object, {"subscription"});
    return {Kind::subscription, id_in(object, "subscription"), {}, false};
  }
  const std::uint64_t camera_id = id_in(object, "camera");
  if (object.isMember("topic")) {
    require_keys(object, {"camera", "topic"});
    return {Kind::topic, camera_id, text_in(object, "topic"), false};
  }
  if (object.isMember("object")) {
    require_keys(object, {"camera", "object", "inMotion"});
    return {Kind::object, camera_id, text_in(object, "object"),
            object.isMember("inMotion") && flag_in(object, "inMotion")};
  }
  if (object.isMember("motion")) {
    require_keys(object, {"camera", "motion"});
    if (!flag_in(object, "motion")) {
      throw Event_Fault{"\"motion\" must be true: what does not happen is no event.",
                        &object["motion"]};
    }
    return {Kind::motion, camera_id, {}, false};
  }
  throw Event_Fault{"The event has none of \"topic\", \"object\" and \"motion\".", &object};
}

bool is_blank(std::string_view line) {
  return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

}  // namespace

void Event_Reader::Close::operator()(std::FILE* file) const {
  if (file != stdin) {
    std::fclose(file);
  }
}

Event_Reader::Event_Reader(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      file_(path == "-" ? stdin : std::fopen(path.c_str(), "rbe")),
      piece_(std::size_t{64} << 10),
      reader_(make_reader()) {
  if (!file_) {
    complain("open", name_);
  }
}

bool Event_Reader::fill() {
  begin_ = 0;
  end_ = std::fread(piece_.data(), 1, piece_.size(), file_.get());
  if (end_ == 0 && std::ferror(file_.get()) != 0) {
    complain("read", name_);
  }
  return end_ > 0;
}

/// Valid until the next one is asked for.
std::optional<std::string_view> Event_Reader::next_line() {
  line_.clear();
  bool is_there = false;
  while (begin_ < end_ || fill()) {
    is_there = true;
    const std::string_view rest(piece_.data() + begin_, end_ - begin_);
    const std::size_t size = rest.find('\n');
    line_.append(rest.substr(0, size));
    begin_ = size == std::string_view::npos ? end_ : begin_ + size + 1;
    if (line_.size() > longest_line) {
      throw Event_Error(
          {fmt::format("The line is longer than {} bytes.", longest_line), {number_ + 1, 1}});
    }
    if (size != std::string_view::npos) {
      break;
    }
  }
  if (!is_there) {
    return std::nullopt;
  }
  ++number_;
  return line_;
}

std::optional<Event> Event_Reader::next() {
  while (const std::optional<std::string_view> line = next_line()) {
    if (!is_blank(*line)) {
      return parse(*line);
    }
  }
  return std::nullopt;
}

Event Event_Reader::parse(std::string_view line) {
  if (embedded_server::find_grammar_fault(line, most_values_of_an_event)) {
    reject(line);
  }
  Json::Value value;
  if (!reader_->parse(line.data(), line.data() + line.size(), &value, nullptr)) {
    reject(line);
  }
  try {
    return event_in(value);
  } catch (const Event_Fault&) {
    reject(line);
  }
}

/// Reads it once more, as a document whose places are known.
void Event_Reader::reject(std::string_view line) const {
  const std::string text(line.substr(0, line.find_last_not_of('\r') + 1));
  const auto here = [this](Location location) { return Location{number_, location.column}; };
  try {
    const Json_Document document(text, most_values_of_an_event);
    try {
      event_in(document.value());
    } catch (const Event_Fault& fault) {
      throw Event_Error({fault.message, here(document.locate(*fault.value))}, text);
    }
  } catch (const embedded_server::Document_Error& error) {
    throw Event_Error({error.what(), here(error.location)}, text);
  }
  throw Event_Error({"The line is no event.", {number_, 1}}, text);
}

}  // namespace kuv::vemora::operations
