// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/source_sentences.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace kuv::test {
namespace {

std::string text_of(const std::filesystem::path& path) {
  std::ifstream stream(path);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class Literal_Reader {
 public:
  explicit Literal_Reader(std::string source) : source_(std::move(source)) {}

  std::vector<std::string> read() {
    while (place_ < source_.size()) {
      step();
    }
    return literals_;
  }

 private:
  void step() {
    const char character = source_[place_];
    if (character == '#' || source_.compare(place_, 2, "//") == 0) {
      place_ = std::min(source_.find('\n', place_), source_.size());
    } else if (character == '"') {
      read_literal();
    } else {
      joins_ = joins_ && std::isspace(static_cast<unsigned char>(character)) != 0;
      ++place_;
    }
  }

  void read_literal() {
    if (!joins_) {
      literals_.emplace_back();
    }
    for (++place_; source_.at(place_) != '"'; ++place_) {
      if (source_[place_] == '\\') {
        ++place_;  // what is escaped in these texts stands for itself
      }
      literals_.back() += source_.at(place_);
    }
    ++place_;
    joins_ = true;
  }

  std::string source_;
  std::size_t place_ = 0;
  bool joins_ = false;  ///< nothing came since the last literal
  std::vector<std::string> literals_;
};

/// A sentence; names of keys, modes and channels are none.
bool is_sentence(const std::string& text) {
  return text.find(' ') != std::string::npos;
}

bool is_log_line(const std::string& text) {
  return text.find(" | ") != std::string::npos;
}

}  // namespace

std::vector<std::string> literals_of(const std::string& source) {
  return Literal_Reader(source).read();
}

std::vector<std::string> sentences_of_sources(const std::string& folder) {
  std::vector<std::string> sentences;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".cpp") {
      continue;
    }
    for (const std::string& literal : literals_of(text_of(entry.path()))) {
      if (is_sentence(literal) && !is_log_line(literal)) {
        sentences.push_back(literal);
      }
    }
  }
  return sentences;
}

bool can_become(std::string_view pattern, std::string_view text) {
  const std::size_t hole = pattern.find("{}");
  if (hole == std::string_view::npos) {
    return pattern == text;
  }
  if (text.substr(0, hole) != pattern.substr(0, hole)) {
    return false;
  }
  for (std::size_t end = hole + 1; end <= text.size(); ++end) {
    if (can_become(pattern.substr(hole + 2), text.substr(end))) {
      return true;
    }
  }
  return false;
}

}  // namespace kuv::test
