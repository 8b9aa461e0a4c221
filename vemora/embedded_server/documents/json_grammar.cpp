#include "vemora/embedded_server/documents/json_grammar.h"

#include <fmt/format.h>

#include <array>
#include <utility>

#include "vemora/embedded_server/texts/letters.h"

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

/// Walks through a text once, without calling itself, so that no nesting is too deep for it.
class Walk {
 public:
  Walk(std::string_view text, std::size_t most_values)
      : text_(text), place_(byte_order_mark_size(text)), most_values_(most_values) {}

  std::optional<Grammar_Fault> find_fault() {
    skip_blanks();
    take_root();
    while (!fault_ && (skip_blanks(), place_ < text_.size())) {
      take_next();
    }
    if (!fault_ && expected_ != Expected::nothing) {
      complain("The document ends too early.");
    }
    return std::move(fault_);
  }

 private:
  enum class Expected { value, value_or_end, key, key_or_end, comma_or_end, nothing };

  void complain(std::string message) { complain_at(place_, std::move(message)); }

  void complain_at(std::size_t place, std::string message) {
    if (!fault_) {
      fault_ = Grammar_Fault{std::move(message), place};
    }
  }

  /// The byte here, or NUL behind the end; no rule of JSON takes a NUL for something.
  char here() const { return place_ < text_.size() ? text_[place_] : '\0'; }

  bool take(char wanted) {
    const bool there = place_ < text_.size() && text_[place_] == wanted;
    place_ += there ? 1 : 0;
    return there;
  }

  void skip_blanks() {
    while (here() == ' ' || here() == '\t' || here() == '\n' || here() == '\r') {
      ++place_;
    }
  }

  void take_root() {
    if (place_ == text_.size()) {
      complain("The document is empty.");
    } else if (here() == '/' || here() == '{' || here() == '[') {
      take_value();
    } else {
      complain("A document must be an object or an array.");
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
    complain(is_comment() ? no_comments : "There is something behind the end of the document.");
  }

  bool is_comment() const { return here() == '/' || here() == '#'; }

  void take_value() {
    if (nesting_.size() >= deepest_nesting) {
      return complain(fmt::format("Nested more than {} levels deep.", deepest_nesting));
    }
    if (values_ == most_values_) {
      return complain(fmt::format("More than {} values.", most_values_));
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
    ++place_;
  }

  void leave() {
    nesting_.pop_back();
    ++place_;
    close_value();
  }

  void close_value() { expected_ = nesting_.empty() ? Expected::nothing : Expected::comma_or_end; }

  void take_key() {
    if (here() != '"') {
      return complain(is_comment() ? no_comments : "A key in double quotes is expected.");
    }
    take_string();
    skip_blanks();
    if (!take(':')) {
      return complain(is_comment() ? no_comments : "A colon is expected.");
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
      complain(no_comments);
    } else {
      complain(object ? "A comma or a closing brace is expected."
                      : "A comma or a closing bracket is expected.");
    }
  }

  void take_word() {
    for (const std::string_view word : {"true", "false", "null"}) {
      if (text_.substr(place_, word.size()) == word) {
        place_ += word.size();
        return;
      }
    }
    complain(is_comment() ? no_comments : "A value is expected.");
  }

  void take_number() {
    take('-');
    if (take('0')) {
      if (is_digit(here())) {
        return complain_at(place_ - 1, "A number must not begin with a zero.");
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
      complain("A digit is expected.");
    }
    while (is_digit(here())) {
      ++place_;
    }
  }

  void take_string() {
    const std::size_t begin = place_++;
    while (!fault_ && !take('"')) {
      if (place_ == text_.size()) {
        complain_at(begin, "The text that begins here has no end.");
      } else if (take('\\')) {
        take_escape();
      } else if (static_cast<unsigned char>(here()) < 0x20) {
        complain("A control character in a text must be escaped.");
      } else {
        ++place_;
      }
    }
  }

  /// Behind its backslash.
  void take_escape() {
    constexpr std::string_view plain = "\"\\/bfnrt";
    if (here() != '\0' && plain.find(here()) != std::string_view::npos) {
      ++place_;
    } else if (take('u')) {
      take_escaped_letter();
    } else {
      complain_at(place_ - 1, "There is no such escape.");
    }
  }

  /// Behind "\u". Letters that four digits cannot say take two such escapes.
  void take_escaped_letter() {
    constexpr auto half_a_letter = "This escape stands for half a letter.";
    const std::size_t begin = place_ - 2;
    const unsigned first = take_code_unit(begin);
    const bool leads = first >= 0xD800 && first <= 0xDBFF;
    if (first >= 0xDC00 && first <= 0xDFFF) {
      complain_at(begin, half_a_letter);
    }
    if (!leads || fault_) {
      return;
    }
    const std::size_t second_begin = place_;
    const bool escaped = take('\\') && take('u');
    const unsigned second = escaped ? take_code_unit(second_begin) : 0;
    if (second < 0xDC00 || second > 0xDFFF) {
      complain_at(begin, half_a_letter);
    }
  }

  unsigned take_code_unit(std::size_t begin) {
    unsigned unit = 0;
    for (int digit = 0; digit < 4; ++digit) {
      const auto value = hex_value(here());
      if (!value) {
        complain_at(begin, "\\u takes four hexadecimal digits.");
        return 0;
      }
      unit = unit * 16 + *value;
      ++place_;
    }
    return unit;
  }

  static constexpr const char* no_comments = "JSON has no comments.";

  std::string_view text_;
  std::size_t place_;
  std::size_t most_values_;
  std::size_t values_ = 0;
  Expected expected_ = Expected::value;
  std::string nesting_;  ///< the opening braces and brackets that are not closed yet
  std::optional<Grammar_Fault> fault_;
};

}  // namespace

std::optional<Grammar_Fault> find_grammar_fault(std::string_view text, std::size_t most_values) {
  return Walk(text, most_values).find_fault();
}

}  // namespace kuv::vemora::embedded_server
