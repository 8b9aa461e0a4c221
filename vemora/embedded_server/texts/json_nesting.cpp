#include "vemora/embedded_server/texts/json_nesting.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Behind the text that begins at `place`, or behind the end.
std::size_t end_of_string(std::string_view json, std::size_t place) {
  for (++place; place < json.size() && json[place] != '"'; ++place) {
    place += json[place] == '\\' ? 1 : 0;
  }
  return place + 1;
}

}  // namespace

bool is_nested_too_deeply(std::string_view json) {
  std::size_t depth = 0;
  for (std::size_t place = 0; place < json.size();) {
    const char here = json[place];
    if (here == '"') {
      place = end_of_string(json, place);
      continue;
    }
    if (here == '{' || here == '[') {
      if (++depth > deepest_nesting) {
        return true;
      }
    } else if ((here == '}' || here == ']') && depth > 0) {
      --depth;
    }
    ++place;
  }
  return false;
}

}  // namespace kuv::vemora::embedded_server
