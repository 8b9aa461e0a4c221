#include "tools/render/terminal.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <utility>

namespace kuv::vemora::tools {
namespace {

bool wants_colour() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody changes the environment
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

bool is_control(unsigned char byte) {
  return byte < 0x20 || byte == 0x7F;
}

/// The second byte of an 8-bit control character (U+0080 to U+009F) in UTF-8.
bool is_wide_control(unsigned char before, unsigned char byte) {
  return before == 0xC2 && byte >= 0x80 && byte <= 0x9F;
}

/// How many columns a UTF-8 text takes, near enough: one a letter.
std::size_t width_of(const std::string& text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

void print_row(const std::vector<std::string>& row, const std::vector<std::size_t>& widths) {
  for (std::size_t column = 0; column < row.size(); ++column) {
    std::cout << row[column];
    if (column + 1 < row.size()) {
      std::cout << std::string(widths[column] - width_of(row[column]) + 2, ' ');
    }
  }
  std::cout << '\n';
}

}  // namespace

std::string printable(const std::string& text) {
  std::string shown;
  for (std::size_t place = 0; place < text.size(); ++place) {
    const auto byte = static_cast<unsigned char>(text[place]);
    const auto next = place + 1 < text.size() ? static_cast<unsigned char>(text[place + 1]) : 0;
    if (is_wide_control(byte, next)) {
      shown += fmt::format("\\x{:02x}", next);
      ++place;
    } else if (is_control(byte)) {
      shown += fmt::format("\\x{:02x}", byte);
    } else {
      shown += text[place];
    }
  }
  return shown;
}

std::string in_red(const std::string& text) {
  return wants_colour() ? "\x1b[31m" + text + "\x1b[0m" : text;
}

void print_table(const std::vector<std::string>& headings,
                 const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (std::size_t column = 0; column < headings.size(); ++column) {
    std::size_t width = width_of(headings[column]);
    for (const std::vector<std::string>& row : rows) {
      width = std::max(width, width_of(row[column]));
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
