// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <string_view>

namespace kuv::vemora {

/// A value and the object or array that it belongs to; a null value if it is missing there.
class Member {
 public:
  Member() = default;  ///< for find_members to fill in
  Member(const Json::Value& value, const Json::Value& owner) : value_(&value), owner_(&owner) {}

  const Json::Value& operator*() const { return *value_; }
  const Json::Value* operator->() const { return value_; }

  /// False also of an element that was never assigned; a null that was written is there.
  bool is_there() const { return value_ != &Json::Value::nullSingleton(); }

  /// What a fault points at: the value, or its owner if the value is missing.
  const Json::Value& place() const { return is_there() ? *value_ : *owner_; }

 private:
  const Json::Value* value_ = nullptr;
  const Json::Value* owner_ = nullptr;
};

struct Named_Member {
  std::string_view name;
  Member& member;
};

/// Finds the members of these names: find_members(object, {{"id", id}, {"name", name}}). One walk
/// over the object finds them all, where the library would search it for each: a configuration has
/// a million of them. Fastest where the names are in the order of their letters, as an object has
/// its members.
template <std::size_t count>
void find_members(const Json::Value& object, const Named_Member (&wanted)[count]) {
  const Member missing(Json::Value::nullSingleton(), object);
  for (const auto& [name, member] : wanted) {
    member = missing;
  }
  std::size_t next = 0;  // among the names: behind the last one that was found
  const auto end = object.end();
  for (auto found = object.begin(); found != end; ++found) {
    const char* name_end = nullptr;
    const char* const name_begin = found.memberName(&name_end);
    const std::string_view name(name_begin, static_cast<std::size_t>(name_end - name_begin));
    for (std::size_t tried = 0; tried < count; ++tried) {
      const Named_Member& candidate = wanted[next];
      next = next + 1 < count ? next + 1 : 0;
      if (candidate.name == name) {
        candidate.member = Member(*found, object);
        break;
      }
    }
  }
}

}  // namespace kuv::vemora
