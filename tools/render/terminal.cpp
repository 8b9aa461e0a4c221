#include "tools/render/terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <utility>

#include "vemora/embedded_server/persistent/letters.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::count_letters;
using embedded_server::letter_size;

bool wants_colour() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

/// What a letter is called when it must not be shown: it is a control character (which a terminal
/// obeys) or turns the direction of what follows; nothing for all others.
std::optional<unsigned> unshown(std::string_view letter) {
  const auto byte = [letter](std::size_t place) {
    return static_cast<unsigned char>(letter[place]);
  };
  if (letter.size() == 1 && (byte(0) < 0x20 || byte(0) == 0x7F)) {
    return byte(0);
  }
  if (letter.size() == 2 && byte(0) == 0xC2 && byte(1) < 0xA0) {
    return byte(1);
  }
  if (letter.size() != 3 || byte(0) != 0xE2) {
    return std::nullopt;
  }
  const unsigned code = 0x2000U + (byte(1) & 0x3FU) * 64 + (byte(2) & 0x3FU);
  const bool turns = code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
                     (code >= 0x2066 && code <= 0x2069);
  return turns ? std::make_optional(code) : std::nullopt;
}

std::string shown(std::string_view letter) {
  const std::optional<unsigned> code = unshown(letter);
  if (!code) {
    return std::string(letter);
  }
  return letter.size() == 1 ? fmt::format("\\x{:02x}", *code) : fmt::format("\\u{:04x}", *code);
}

void print_row(const std::vector<std::string>& row, const std::vector<std::size_t>& widths) {
  for (std::size_t column = 0; column < row.size(); ++column) {
    std::cout << row[column];
    if (column + 1 < row.size()) {
      std::cout << std::string(widths[column] - count_letters(row[column]) + 2, ' ');
    }
  }
  std::cout << '\n';
}

}  // namespace

std::string printable(std::string_view text) {
  std::string all;
  for (std::size_t place = 0; place < text.size();) {
    const std::size_t size = letter_size(text, place);
    if (size == 0) {
      all += fmt::format("\\x{:02x}", static_cast<unsigned char>(text[place]));
    } else {
      all += shown(text.substr(place, size));
    }
    place += std::max<std::size_t>(size, 1);
  }
  return all;
}

std::string in_red(const std::string& text) {
  return wants_colour() ? "\x1b[31m" + text + "\x1b[0m" : text;
}

void print_table(const std::vector<std::string>& headings,
                 const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (std::size_t column = 0; column < headings.size(); ++column) {
    std::size_t width = count_letters(headings[column]);
    for (const std::vector<std::string>& row : rows) {
      width = std::max(width, count_letters(row[column]));
    }
    widths.push_back(width);
  }
  print_row(headings, widths);
  for (const std::vector<std::string>& row : rows) {
    print_row(row, widths);
  }
}

Progress_Line::Progress_Line(std::string what) : what_(std::move(what)) {
  if (isatty(STDERR_FILENO) == 1) {
    ticker_ = std::thread([this] { tick(); });
  }
}

Progress_Line::~Progress_Line() {
  if (ticker_.joinable()) {
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      done_ = true;
    }
    finished_.notify_all();
    ticker_.join();
  }
}

void Progress_Line::tick() {
  std::unique_lock<std::mutex> lock(mutex_);
  int seconds = 0;
  while (!finished_.wait_for(lock, std::chrono::seconds(1), [this] { return done_; })) {
    std::cerr << fmt::format("\r{} ... {} s", what_, ++seconds) << std::flush;
  }
  if (seconds > 0) {
    std::cerr << "\r\x1b[K" << std::flush;
  }
}

}  // namespace kuv::vemora::tools
