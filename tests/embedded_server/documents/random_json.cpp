// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tests/embedded_server/documents/random_json.h"

#include <vector>

#include "fuzz/text_mutations.h"

namespace kuv::fuzz {
namespace {

using Texts = std::vector<std::string>;

const Texts& numbers() {
  static const Texts all{"0",
                         "-0",
                         "-0.0",
                         "0e0",
                         "-0e-0",
                         "7",
                         "-1",
                         "1.5",
                         "0.1",
                         "1e2",
                         "1E+2",
                         "25e-1",
                         "2147483647",
                         "2147483648",
                         "-2147483648",
                         "-2147483649",
                         "4294967295",
                         "4294967296",
                         "999999999999999999",
                         "9007199254740993",
                         "9223372036854775807",
                         "9223372036854775808",
                         "-9223372036854775808",
                         "-9223372036854775809",
                         "18446744073709551610",
                         "18446744073709551615",
                         "18446744073709551616",
                         "184467440737095516150",
                         "-18446744073709551615",
                         "123456789012345678901234567890",
                         "1.7976931348623157e308",
                         "1.7976931348623159e308",
                         "1e308",
                         "1e309",
                         "-1e999",
                         "1e99999999999",
                         "0e999",
                         "0.0e99999999999",
                         "1e-307",
                         "2.2250738585072011e-308",
                         "4.9e-324",
                         "2e-324",
                         "1e-400",
                         "1e-99999999999",
                         "0.1000000000000000055511151231257827021181583404541015625",
                         "9007199254740993.0000000000000000000000000000000000001",
                         "1.00000000000000011102230246251565404236316680908203124",
                         "123456789.123456789e-5"};
  return all;
}

const Texts& pieces() {
  using namespace std::string_literals;
  static const Texts all{"a"s,
                         "gate 7"s,
                         "T\xC3\xBCr"s,
                         "\xE9\x96\x80"s,
                         "\xF0\x9F\x9A\xAA"s,
                         "\x7F"s,
                         "\\\""s,
                         "\\\\"s,
                         "\\/"s,
                         "\\b\\f\\n\\r\\t"s,
                         "\\u0041"s,
                         "\\u0000"s,
                         "\\u00e9"s,
                         "\\u20AC"s,
                         "\\uFFFF"s,
                         "\\uFEFF"s,
                         "\\ud83d\\udeaa"s,
                         "\\uDBFF\\uDFFF"s,
                         "\x80"s,
                         "\xFF"s,
                         "\xC3"s,
                         "\xED\xA0\x80"s,
                         "\xED\xB0\x80"s,
                         "\xED\x9F\xBF"s,
                         "\xF4\x90\x80\x80"s,
                         "tns1:RuleEngine/LineDetector/Crossed"s,
                         "{[,:]}"s,
                         "//"s};
  return all;
}

/// What is no JSON in a string.
const Texts& bad_pieces() {
  using namespace std::string_literals;
  static const Texts all{"\\udc00"s, "\\ud800"s, "\\ud800\\u0041"s, "\\x"s,  "\\u12G4"s, "\n"s,
                         "\0"s,      "\x01"s,    "\x1A"s,           "\x1F"s, "\\"s};
  return all;
}

const Texts& keys() {
  static const Texts all{"id",         "name", "triggers", "tags",      "type", "sources",
                         "searchItem", "a",    "b",        "A",         "",     "area",
                         "i",          "idx",  "\\u0069d", "ty\\u0070e"};
  return all;
}

class Writer {
 public:
  explicit Writer(Random& random) : random_(random) {}

  std::string document() {
    if (random_.chance(5)) {
      text_ += "\xEF\xBB\xBF";
    }
    add_blanks();
    add_container(random_.below(5));
    add_blanks();
    return text_;
  }

 private:
  void add_blanks() {
    static const Texts all{" ", "\n", "\r\n", "\t", "        ", "\n                 ", "\r"};
    while (random_.chance(30)) {
      text_ += random_.pick(all);
    }
  }

  void add_string() {
    text_ += '"';
    while (random_.chance(70)) {
      text_ += random_.pick(random_.below(400) == 0 ? bad_pieces() : pieces());
      if (random_.chance(5)) {
        text_ += std::string(random_.below(100), 'x');
      }
    }
    text_ += '"';
  }

  void add_number() {
    if (random_.chance(70)) {
      text_ += random_.pick(numbers());
      return;
    }
    text_ += random_.chance(50) ? "-" : "";
    text_ += std::to_string(random_.below(~std::uint64_t{0}) >> random_.below(64));
    if (random_.chance(50)) {
      text_ += "." + std::to_string(random_.below(~std::uint64_t{0}));
    }
    if (random_.chance(50)) {
      text_ += "e" + std::to_string(static_cast<int>(random_.below(700)) - 350);
    }
  }

  void add_key() {
    if (random_.chance(60)) {
      // A number behind it makes it one of its own.
      text_ +=
          '"' + random_.pick(keys()) + (random_.chance(60) ? std::to_string(++keys_) : "") + '"';
    } else {
      add_string();
    }
  }

  void add_container(std::uint64_t depth) {
    const bool is_object = random_.chance(60);
    text_ += is_object ? '{' : '[';
    add_blanks();
    for (std::uint64_t count = random_.below(5); count > 0; --count) {
      if (is_object) {
        add_key();
        add_blanks();
        text_ += ':';
        add_blanks();
      }
      add_value(depth);
      add_blanks();
      if (count > 1) {
        text_ += ',';
        add_blanks();
      }
    }
    text_ += is_object ? '}' : ']';
  }

  void add_value(std::uint64_t depth) {
    static const Texts words{"true", "false", "null"};
    const std::uint64_t kind = random_.below(depth > 0 ? 5 : 3);
    if (kind == 0) {
      add_string();
    } else if (kind == 1) {
      add_number();
    } else if (kind == 2) {
      text_ += random_.pick(words);
    } else {
      add_container(depth - 1);
    }
  }

  Random& random_;
  std::string text_;
  int keys_ = 0;
};

}  // namespace

std::string random_json(Random& random) {
  std::string text = Writer(random).document();
  while (random.chance(35)) {
    mutate_text(text, random);
  }
  return text;
}

}  // namespace kuv::fuzz
