// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/text_mutations.h"

#include <vector>

namespace kuv::fuzz {
namespace {

/// What matters to a JSON reader.
const std::vector<std::string>& tokens() {
  using namespace std::string_literals;
  static const std::vector<std::string> all{
      "{"s,  "}"s,  "["s,    "]"s, ":"s,    ","s,    "\""s,   "\\"s,     "-"s,
      "."s,  "e9"s, "0"s,    "9"s, "null"s, "true"s, "//"s,   "/**/"s,   " "s,
      "\n"s, "\0"s, "\xff"s, "u"s, "{}"s,   "[]"s,   "\"\""s, "\\u0000"s};
  return all;
}

}  // namespace

void mutate_text(std::string& text, Random& random) {
  const std::size_t place = random.below(text.size() + 1);
  const std::size_t length = random.below(8);
  switch (random.below(6)) {
    case 0:
      text.insert(place, random.pick(tokens()));
      break;
    case 1:
      text.replace(place, 1, random.pick(tokens()));
      break;
    case 2:
      text.erase(place, length);
      break;
    case 3:
      text.insert(place, text.substr(place, length));
      break;
    case 4:
      text.insert(random.below(text.size() + 1), text.substr(place, length));
      break;
    default:
      text.replace(place, 1, 1, static_cast<char>(random.below(256)));
  }
}

}  // namespace kuv::fuzz
