// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_tree.h"

#include <rapidjson/reader.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "vemora/embedded_server/documents/known_keys.h"
#include "vemora/embedded_server/texts/characters.h"
#include "vemora/embedded_server/texts/json_nesting.h"

// Its scanning of sixteen bytes at a time accepts control characters in strings, and is no faster.
#if defined(RAPIDJSON_SSE2) || defined(RAPIDJSON_SSE42) || defined(RAPIDJSON_NEON)
#error "RapidJSON must be used without RAPIDJSON_SSE2, RAPIDJSON_SSE42 and RAPIDJSON_NEON"
#endif

namespace kuv::vemora::embedded_server {
namespace {

/// What RapidJSON reads from. It notes where each value begins.
class Text_Stream {
 public:
  using Ch = char;

  explicit Text_Stream(const std::string& text)
      : origin_(text.data() + byte_order_mark_size(text)),
        end_(text.data() + text.size()),
        here_(origin_),
        token_(origin_) {}

  char Peek() const { return *here_; }  // NUL at the end
  char Take() { return *here_++; }
  std::size_t Tell() const { return static_cast<std::size_t>(here_ - origin_); }

  // RapidJSON compiles these for every stream, and calls them for texts that it may change.
  void Put(char) { std::abort(); }
  char* PutBegin() { std::abort(); }
  std::size_t PutEnd(char*) { std::abort(); }

  /// RapidJSON does this before each value.
  void skip_blanks() {
    for (;;) {
      if (static_cast<std::size_t>(end_ - here_) >= eight && is_indentation(here_)) {
        here_ += eight;
      } else if (*here_ == ' ' || *here_ == '\n' || *here_ == '\r' || *here_ == '\t') {
        ++here_;
      } else {
        break;
      }
    }
    token_ = here_;
  }

  bool is_at_end() const { return here_ == end_; }

  /// Where blanks were skipped last: while a value is reported, where it begins.
  const char* token() const { return token_; }

  std::ptrdiff_t offset_of(const char* place) const { return place - origin_; }

 private:
  static constexpr std::size_t eight = 8;

  static bool is_indentation(const char* text) { return std::memcmp(text, "        ", eight) == 0; }

  const char* origin_;  ///< after a byte order mark
  const char* end_;
  const char* here_;
  const char* token_;
};

/// Found by RapidJSON as the way to skip blanks of this stream.
void SkipWhitespace(Text_Stream& stream) {
  stream.skip_blanks();
}

}  // namespace
}  // namespace kuv::vemora::embedded_server

/// RapidJSON copies the stream while it reads a string or a number, which is faster.
template <>
struct rapidjson::StreamTraits<kuv::vemora::embedded_server::Text_Stream> {
  enum { copyOptimization = 1 };
};

namespace kuv::vemora::embedded_server {
namespace {

/// RapidJSON does not check whether it got memory.
class Checked_Allocator {
 public:
  static constexpr bool kNeedFree = true;

  static void* Malloc(std::size_t size) { return checked(std::malloc(size)); }
  static void* Realloc(void* old, std::size_t, std::size_t size) {
    return checked(std::realloc(old, size));
  }
  static void Free(void* memory) { std::free(memory); }

 private:
  static void* checked(void* memory) {
    if (memory == nullptr) {
      throw std::bad_alloc();
    }
    return memory;
  }
};

/// Receives what RapidJSON reads, and builds the tree in place. Answering false ends the reading.
class Tree_Builder {
 public:
  Tree_Builder(const Text_Stream& stream, std::size_t most_values)
      : stream_(stream), most_values_(most_values) {}

  Json::Value take() { return std::move(root_); }

  bool Null() { return take_scalar(Json::Value(), token() + std::strlen("null")); }
  bool Bool(bool value) {
    return take_scalar(Json::Value(value), token() + std::strlen(value ? "true" : "false"));
  }
  bool Int(int number) { return Int64(number); }
  bool Uint(unsigned number) { return Int64(number); }
  bool Int64(std::int64_t number) {
    return take_scalar(Json::Value(Json::Int64(number)), end_of_number());
  }
  bool Uint64(std::uint64_t number) {
    return number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}
               ? take_scalar(Json::Value(Json::UInt64(number)), end_of_number())
               : Int64(static_cast<std::int64_t>(number));
  }
  /// Read again, because RapidJSON rounds some numbers wrongly.
  bool Double(double) {
    double number = 0;
    const char* const end = end_of_number();
    const auto [behind, error] = std::from_chars(token(), end, number);
    return error == std::errc() && behind == end && take_scalar(Json::Value(number), end);
  }
  bool RawNumber(const char*, rapidjson::SizeType, bool) { return false; }
  bool String(const char* text, rapidjson::SizeType size, bool) {
    const char* const end = end_of_string({text, size});
    return end != nullptr && take_scalar(Json::Value(text, text + size), end);
  }

  bool StartObject() { return enter(Json::objectValue); }
  bool EndObject(rapidjson::SizeType) { return leave(); }
  bool StartArray() { return enter(Json::arrayValue); }
  bool EndArray(rapidjson::SizeType) { return leave(); }

  bool Key(const char* text, rapidjson::SizeType size, bool) {
    const std::string_view key(text, size);
    Json::Value& object = *containers_.back();
    const char* const known = known_key(key);
    member_ = known != nullptr ? &object[Json::StaticString(known)]
                               : object.demand(key.data(), key.data() + key.size());
    const bool is_new = member_->getOffsetLimit() == 0;  // which every value has that was read
    return is_new && (known != nullptr || end_of_string(key) != nullptr);
  }

 private:
  const char* token() const { return stream_.token(); }

  const char* end_of_number() const { return token() + std::strspn(token(), "0123456789+-.eE"); }

  /// The end of the string that was read as `text`; null if it has half of a surrogate pair, which
  /// RapidJSON accepts if it is the second half.
  const char* end_of_string(std::string_view text) const {
    const char* place = token() + 1;
    // An escaped character takes more room than the character itself: if none is, the string ends
    // after as many bytes as the text has.
    const char* const end = place + text.size();
    if (*end == '"' && end[-1] != '\\') {
      return end + 1;
    }
    for (; *place != '"'; ++place) {
      place += *place == '\\' ? 1 : 0;
    }
    return has_lone_surrogate(text) ? nullptr : place + 1;
  }

  /// Half of a surrogate pair, written as if it were a character: 0xED and a byte from 0xA0 on.
  static bool has_lone_surrogate(std::string_view text) {
    for (std::size_t place = text.find('\xED'); place != std::string_view::npos;
         place = text.find('\xED', place + 1)) {
      if (place + 1 < text.size() && static_cast<unsigned char>(text[place + 1]) >= 0xA0) {
        return true;
      }
    }
    return false;
  }

  bool may_take_value() { return containers_.size() < deepest_nesting && values_++ < most_values_; }

  Json::Value& place(Json::Value&& value) {
    if (member_ != nullptr) {
      Json::Value& member = *std::exchange(member_, nullptr);
      member.swapPayload(value);
      return member;
    }
    return containers_.empty() ? root_ = std::move(value)
                               : containers_.back()->append(std::move(value));
  }

  bool take_scalar(Json::Value&& value, const char* end) {
    if (containers_.empty() || !may_take_value()) {
      return false;
    }
    Json::Value& placed = place(std::move(value));
    placed.setOffsetStart(stream_.offset_of(token()));
    placed.setOffsetLimit(stream_.offset_of(end));
    return true;
  }

  bool enter(Json::ValueType type) {
    if (!may_take_value()) {
      return false;
    }
    Json::Value& placed = place(Json::Value(type));
    placed.setOffsetStart(stream_.offset_of(token()));
    containers_.push_back(&placed);
    return true;
  }

  bool leave() {
    containers_.back()->setOffsetLimit(stream_.offset_of(token() + std::strlen("]")));
    containers_.pop_back();
    return true;
  }

  const Text_Stream& stream_;
  std::size_t most_values_;
  std::size_t values_ = 0;
  Json::Value root_;
  std::vector<Json::Value*> containers_;  ///< that are not closed yet; the tree moves none of them
  Json::Value* member_ = nullptr;         ///< whose key was read, and whose value was not
};

}  // namespace

std::optional<Json::Value> read_json_tree(const std::string& text, std::size_t most_values) {
  Text_Stream stream(text);
  Tree_Builder builder(stream, most_values);
  rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Checked_Allocator> reader;
  // Without recursion, because a server may call this on a thread with a small stack.
  const bool is_read = !reader.Parse<rapidjson::kParseIterativeFlag>(stream, builder).IsError();
  // A NUL ends the text for RapidJSON.
  return is_read && stream.is_at_end() ? std::make_optional(builder.take()) : std::nullopt;
}

}  // namespace kuv::vemora::embedded_server
