// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>

#include "vemora/platform/utils/json_members.h"
#include "vemora/trigger_parser/prefetch.h"

namespace kuv::vemora {

/// What stands for a value that is missing.
inline const Json::Value& null_value() {
  static const Json::Value& null = Json::Value::nullSingleton();
  return null;
}

/// A value and the object or array that it belongs to; a null value if it is missing there.
class Member {
 public:
  Member() = default;  ///< for find_members to fill in
  Member(const Json::Value& value, const Json::Value& owner) : value_(&value), owner_(&owner) {}

  const Json::Value& operator*() const { return *value_; }
  const Json::Value* operator->() const { return value_; }

  /// False also of an element that was never assigned; a null that was written is there.
  bool is_there() const { return value_ != &null_value(); }

  /// What a fault points at: the value, or its owner if the value is missing.
  const Json::Value& place() const { return is_there() ? *value_ : *owner_; }

 private:
  const Json::Value* value_ = nullptr;
  const Json::Value* owner_ = nullptr;
};

/// The text of a string, where it lies; nothing when the value is no string.
inline std::optional<std::string_view> text_of(const Json::Value& value) {
  const char* begin = nullptr;
  const char* end = nullptr;
  if (!value.getString(&begin, &end)) {
    return std::nullopt;
  }
  prefetch_behind(begin);
  return std::string_view(begin, static_cast<std::size_t>(end - begin));
}

/// A member that is looked for. The name is a literal, so that comparing with it takes no call.
template <std::size_t size>
class Wanted {
 public:
  // NOLINTNEXTLINE(modernize-avoid-c-arrays): what a literal is
  Wanted(const char (&name)[size], Member& member) : name_(name), member_(member) {}

  bool is(std::string_view name) const {
    return name.size() == size - 1 && std::memcmp(name.data(), name_, size - 1) == 0;
  }

  void set(const Member& member) const { member_ = member; }

 private:
  const char* name_;
  Member& member_;
};

/// Finds the members of these names: find_members(object, Wanted{"id", id}, Wanted{"name", name}).
/// One walk over the object finds them all, where the library would search it for each: a
/// configuration has a million of them.
template <std::size_t... sizes>
[[gnu::always_inline]] inline void find_members(const Json::Value& object,
                                                const Wanted<sizes>&... wanted) {
  const Member missing(null_value(), object);
  (wanted.set(missing), ...);
  for (const auto& [name, value] : kuv::utils::Json_Members(object)) {
    prefetch_behind(name.data());
    ((wanted.is(name) && (wanted.set(Member(value, object)), true)) || ...);
  }
}

}  // namespace kuv::vemora
