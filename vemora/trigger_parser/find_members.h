#pragma once

#include <json/value.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace kuv::vemora {

/// The members of these names, null where the object has none. One walk over the object finds them
/// all, where the library would search it for each: a configuration has a million of them.
template <std::size_t... Sizes>
std::array<const Json::Value*, sizeof...(Sizes)> find_members(const Json::Value& object,
                                                              const char (&... names)[Sizes]) {
  constexpr std::size_t count = sizeof...(Sizes);
  const std::array<std::string_view, count> wanted{std::string_view(names, Sizes - 1)...};
  std::array<const Json::Value*, count> found;
  found.fill(&Json::Value::nullSingleton());
  auto member = object.begin();
  for (Json::ArrayIndex left = object.size(); left > 0; --left, ++member) {
    const char* name_end = nullptr;
    const char* const name_begin = member.memberName(&name_end);
    const std::string_view name(name_begin, static_cast<std::size_t>(name_end - name_begin));
    for (std::size_t place = 0; place < count; ++place) {
      if (wanted[place] == name) {
        found[place] = &*member;
      }
    }
  }
  return found;
}

}  // namespace kuv::vemora
