#pragma once

#include <json/value.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace kuv::vemora {

/// The members of these names, null where the object has none. One walk over the object finds them
/// all, where the library would search it for each: a configuration has a million of them.
template <class... Names>
std::array<const Json::Value*, sizeof...(Names)> find_members(const Json::Value& object,
                                                              const Names&... names) {
  const std::array<std::string_view, sizeof...(Names)> wanted{names...};
  std::array<const Json::Value*, sizeof...(Names)> found;
  found.fill(&Json::Value::nullSingleton());
  const auto end = object.end();
  for (auto member = object.begin(); member != end; ++member) {
    const char* name_end = nullptr;
    const char* const name_begin = member.memberName(&name_end);
    const std::string_view name(name_begin, static_cast<std::size_t>(name_end - name_begin));
    for (std::size_t place = 0; place < wanted.size(); ++place) {
      if (wanted[place] == name) {
        found[place] = &*member;
      }
    }
  }
  return found;
}

}  // namespace kuv::vemora
