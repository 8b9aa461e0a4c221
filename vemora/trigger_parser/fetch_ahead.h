#pragma once

#include <json/value.h>

#include <cstddef>

namespace kuv::vemora {

/// Has the processor fetch what `element` consists of while the elements before it are parsed. The
/// JSON library allocates the members of a value right behind it; a large document lies in no
/// cache, and its walk would wait for each of them. Only a hint: no address is too far.
inline void fetch_ahead(const Json::Value& element) {
  constexpr std::size_t reach = 4096;  // a trigger with a few sources
  constexpr std::size_t line = 64;
  const char* const begin = reinterpret_cast<const char*>(&element);
  for (std::size_t offset = 0; offset < reach; offset += line) {
    __builtin_prefetch(begin + offset);
  }
}

}  // namespace kuv::vemora
