// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/trigger_parser/members.h"
#include "vemora/trigger_parser/parser_fault.h"

namespace kuv::vemora {

/// Collects what is wrong with a document. Without a sink the first fault rejects the document, and
/// with one the fault after which the sink wants no more. Behind a fault the document is read only
/// to find further faults: what is read there must not be used.
class Faults {
 public:
  Faults() = default;
  explicit Faults(Fault_Sink& sink) : sink_(&sink) {}

  /// The faults that follow are about that element of the array.
  void enter_element(std::size_t index) {
    index_ = index;
    id_.reset();
  }

  /// The element is the trigger of that id.
  void name_trigger(std::uint64_t id) { id_ = id; }

  bool is_named() const { return id_.has_value(); }

  /// How many faults there were so far.
  std::size_t count() const { return count_; }

  /// Checks one rule of a document; answers whether the document keeps it. The text is a literal,
  /// so that a rule that is kept costs nothing.
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
  // Out of line, so that no text is made where a rule is checked.
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
