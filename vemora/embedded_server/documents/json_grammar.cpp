// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_grammar.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::optional<unsigned> hex_value(char c) {
  constexpr std::string_view digits = "0123456789abcdef";
  const std::size_t value = digits.find(is_letter(c) ? static_cast<char>(c | 0x20) : c);
  return value == std::string_view::npos ? std::nullopt
                                         : std::make_optional(static_cast<unsigned>(value));
}

/// Checks a text in one pass, without recursion, so that no nesting is too deep for it.
class Checker {
 public:
  Checker(std::string_view text, std::size_t most_values)
      : text_(text), offset_(byte_order_mark_size(text)), most_values_(most_values) {}

  std::optional<Grammar_Fault> find_fault() {
    skip_blanks();
    take_root();
    while (!fault_ && (skip_blanks(), offset_ < text_.size())) {
      take_next();
    }
    if (!fault_ && expected_ != Expected::nothing) {
      report("The document ends too early.");
    }
    return std::move(fault_);
  }

 private:
  enum class Expected { value, value_or_end, key, key_or_end, comma_or_end, nothing };

  void report(std::string message) { report_at(offset_, std::move(message)); }

  void report_at(std::size_t offset, std::string message) {
    if (!fault_) {
      fault_ = Grammar_Fault{std::move(message), offset};
    }
  }

  /// The byte at the current offset, or NUL after the end. NUL has no meaning in JSON.
  char here() const { return offset_ < text_.size() ? text_[offset_] : '\0'; }

  bool take(char wanted) {
    const bool there = offset_ < text_.size() && text_[offset_] == wanted;
    offset_ += there ? 1 : 0;
    return there;
  }

  void skip_blanks() {
    while (here() == ' ' || here() == '\t' || here() == '\n' || here() == '\r') {
      ++offset_;
    }
  }

  void take_root() {
    if (offset_ == text_.size()) {
      report("The document is empty.");
    } else if (here() == '/' || here() == '{' || here() == '[') {
      take_value();
    } else {
      report("A document must be an object or an array.");
    }
  }

  void take_next() {
    switch (expected_) {
      case Expected::value:
        return take_value();
      case Expected::value_or_end:
        return here() == ']' ? leave() : take_value();
      case Expected::key:
        return take_key();
      case Expected::key_or_end:
        return here() == '}' ? leave() : take_key();
      case Expected::comma_or_end:
        return take_comma_or_end();
      case Expected::nothing:
        break;
    }
    report(is_comment() ? no_comments : "Unexpected text after the end of the document.");
  }

  bool is_comment() const { return here() == '/' || here() == '#'; }

  void take_value() {
    if (nesting_.size() >= deepest_nesting) {
      return report(
          fmt::format("The document is nested more than {} levels deep.", deepest_nesting));
    }
    if (values_ == most_values_) {
      return report(fmt::format("The document has more than {} values.", most_values_));
    }
    ++values_;
    if (here() == '{' || here() == '[') {
      return enter();
    }
    if (here() == '"') {
      take_string();
    } else if (here() == '-' || is_digit(here())) {
      take_number();
    } else {
      take_word();
    }
    close_value();
  }

  void enter() {
    const bool object = here() == '{';
    nesting_.push_back(here());
    expected_ = object ? Expected::key_or_end : Expected::value_or_end;
    ++offset_;
  }

  void leave() {
    nesting_.pop_back();
    ++offset_;
    close_value();
  }

  void close_value() { expected_ = nesting_.empty() ? Expected::nothing : Expected::comma_or_end; }

  void take_key() {
    if (here() != '"') {
      return report(is_comment() ? no_comments : "Expected a key in double quotes.");
    }
    take_string();
    skip_blanks();
    if (!take(':')) {
      return report(is_comment() ? no_comments : "Expected a colon.");
    }
    expected_ = Expected::value;
  }

  void take_comma_or_end() {
    const bool object = nesting_.back() == '{';
    if (here() == (object ? '}' : ']')) {
      leave();
    } else if (take(',')) {
      expected_ = object ? Expected::key : Expected::value;
    } else if (is_comment()) {
      report(no_comments);
    } else {
      report(object ? "Expected a comma or a closing brace."
                    : "Expected a comma or a closing bracket.");
    }
  }

  void take_word() {
    for (const std::string_view word : {"true", "false", "null"}) {
      if (text_.substr(offset_, word.size()) == word) {
        offset_ += word.size();
        return;
      }
    }
    report(is_comment() ? no_comments : "Expected a value.");
  }

  void take_number() {
    take('-');
    if (take('0')) {
      if (is_digit(here())) {
        return report_at(offset_ - 1, "A number must not have leading zeros.");
      }
    } else {
      take_digits();
    }
    if (take('.')) {
      take_digits();
    }
    if (take('e') || take('E')) {
      if (!take('+')) {
        take('-');
      }
      take_digits();
    }
  }

  /// At least one.
  void take_digits() {
    if (!is_digit(here())) {
      report("Expected a digit.");
    }
    while (is_digit(here())) {
      ++offset_;
    }
  }

  void take_string() {
    const std::size_t begin = offset_++;
    while (!fault_ && !take('"')) {
      if (offset_ == text_.size()) {
        report_at(begin, "The string that begins here has no end.");
      } else if (take('\\')) {
        take_escape();
      } else if (static_cast<unsigned char>(here()) < 0x20) {
        report("A control character in a string must be escaped.");
      } else {
        ++offset_;
      }
    }
  }

  /// Called after the backslash.
  void take_escape() {
    constexpr std::string_view plain = "\"\\/bfnrt";
    if (here() != '\0' && plain.find(here()) != std::string_view::npos) {
      ++offset_;
    } else if (take('u')) {
      take_code_escape();
    } else {
      report_at(offset_ - 1, "Unknown escape sequence.");
    }
  }

  /// Called after "\u". Characters beyond four digits take two such escapes, a surrogate pair.
  void take_code_escape() {
    constexpr auto half_a_pair = "The escape sequence is half of a surrogate pair.";
    const std::size_t begin = offset_ - 2;
    const unsigned first = take_code_unit(begin);
    const bool leads = first >= 0xD800 && first <= 0xDBFF;
    if (first >= 0xDC00 && first <= 0xDFFF) {
      report_at(begin, half_a_pair);
    }
    if (!leads || fault_) {
      return;
    }
    const std::size_t second_begin = offset_;
    const bool escaped = take('\\') && take('u');
    const unsigned second = escaped ? take_code_unit(second_begin) : 0;
    if (second < 0xDC00 || second > 0xDFFF) {
      report_at(begin, half_a_pair);
    }
  }

  unsigned take_code_unit(std::size_t begin) {
    unsigned unit = 0;
    for (int digit = 0; digit < 4; ++digit) {
      const auto value = hex_value(here());
      if (!value) {
        report_at(begin, "\\u must be followed by four hexadecimal digits.");
        return 0;
      }
      unit = unit * 16 + *value;
      ++offset_;
    }
    return unit;
  }

  static constexpr const char* no_comments = "Comments are not allowed in JSON.";

  std::string_view text_;
  std::size_t offset_;
  std::size_t most_values_;
  std::size_t values_ = 0;
  Expected expected_ = Expected::value;
  std::string nesting_;  ///< the opening braces and brackets that are not closed yet
  std::optional<Grammar_Fault> fault_;
};

}  // namespace

std::optional<Grammar_Fault> find_grammar_fault(std::string_view text, std::size_t most_values) {
  return Checker(text, most_values).find_fault();
}

}  // namespace kuv::vemora::embedded_server
