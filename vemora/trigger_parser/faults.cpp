// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/faults.h"

#include <utility>

#include "vemora/trigger_parser/validation.h"

namespace kuv::vemora {

std::size_t offset_of(const Json::Value& value) {
  return static_cast<std::size_t>(value.getOffsetStart());
}

bool Faults::tell(const std::string& message, std::optional<std::size_t> offset) {
  ++count_;
  if (sink_ == nullptr) {
    return false;
  }
  const auto index = index_ == no_element ? std::nullopt : std::make_optional(index_);
  // Up to the first NUL, as what() of an exception has it: the name of a tag may hold one.
  std::string said = message.substr(0, message.find('\0'));
  return sink_->take({std::move(said), offset, index, id_});
}

void Faults::add(const Json::Value& value, const std::string& message) {
  if (!tell(message, offset_of(value))) {
    raise_validation_error(message);
  }
}

void Faults::add_literal(const Json::Value& value, const char* message) {
  add(value, message);
}

}  // namespace kuv::vemora
