#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/trigger_parser/members.h"
#include "vemora/trigger_parser/parser_fault.h"

namespace kuv::vemora {

/// Whom the readers of a document tell what is wrong with it. Without a sink, and where the sink
/// does not want to go on, the first fault rejects the document: what is read behind a fault is
/// read for the sake of further faults alone, and is nothing to work with.
class Faults {
 public:
  Faults() = default;
  explicit Faults(Fault_Sink& sink) : sink_(&sink) {}

  /// What is told from here on is about that element of the array.
  void enter_element(std::size_t index) {
    index_ = index;
    id_.reset();
  }

  /// The element is the trigger of that id.
  void name_trigger(std::uint64_t id) { id_ = id; }

  bool is_named() const { return id_.has_value(); }

  /// How many were told so far.
  std::size_t count() const { return count_; }

  /// One rule of a document; answers whether it is kept. Its text is a literal, so that a rule that
  /// is kept costs nothing.
  bool require(bool kept, const Member& member, const char* message) {
    if (!kept) {
      add_literal(member.place(), message);
    }
    return kept;
  }

  bool require(bool kept, const Json::Value& value, const char* message) {
    if (!kept) {
      add_literal(value, message);
    }
    return kept;
  }

  /// The value is wrong.
  [[gnu::cold]] void add(const Json::Value& value, const std::string& message);

  /// Tells the sink; answers whether to go on. If not, it is the caller that throws.
  [[gnu::cold]] bool tell(const std::string& message, std::optional<std::size_t> offset);

 private:
  // Out of line, so that no text is made where a rule is looked at.
  [[gnu::cold]] void add_literal(const Json::Value& value, const char* message);

  Fault_Sink* sink_ = nullptr;
  std::size_t index_ = no_element;
  std::optional<std::uint64_t> id_;
  std::size_t count_ = 0;

  static constexpr std::size_t no_element = static_cast<std::size_t>(-1);
};

/// Where a value begins in the text that it was read from; copies of it know that too.
std::size_t offset_of(const Json::Value& value);

}  // namespace kuv::vemora
