// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "tools/vemora-triggers/process/outcome_output.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

bool wants_color() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment is never changed
  const char* const refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

/// Of the terminal that standard output is, unless COLUMNS says another; nothing if neither does.
std::optional<std::size_t> terminal_width() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment is never changed
  if (const char* const columns = std::getenv("COLUMNS")) {
    const std::string_view text = columns;
    std::size_t width = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), width);
    if (fault == std::errc() && end == text.data() + text.size() && width > 0) {
      return width;
    }
  }
  winsize size{};
  const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return is_known ? std::make_optional<std::size_t>(size.ws_col) : std::nullopt;
}

/// Keeps line ends and tabs.
void print_printable_lines(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\n\t"), text.size());
    std::string_view part = text.substr(0, end);
    const std::string_view separator = text.substr(end, 1);
    text.remove_prefix(end + separator.size());
    if (separator == "\n" && !part.empty() && part.back() == '\r') {
      part.remove_suffix(1);
    }
    std::cout << embedded_server::printable(part) << separator;
  }
}

}  // namespace

void print_text(const std::string& text) {
  if (isatty(STDOUT_FILENO) == 1) {
    print_printable_lines(text);
  } else {
    std::cout << text;
  }
}

std::string in_red(const std::string& text) {
  return wants_color() ? "\x1b[31m" + text + "\x1b[0m" : text;
}

void print_table(const Row& headings, const std::vector<Row>& rows,
                 const std::set<std::size_t>& dispensable) {
  for (const std::string& line : lay_out_table(headings, rows, terminal_width(), dispensable)) {
    std::cout << line << '\n';
  }
}

void print_folded(const std::string& text) {
  const auto width = terminal_width();
  for (const std::string& line : width ? fold(text, *width) : std::vector{text}) {
    std::cout << line << '\n';
  }
}

void tell_of_wait() noexcept {
  constexpr std::string_view message =
      "\r\x1b[KAnother process is at work on the database; waiting for it.\n";
  if (isatty(STDERR_FILENO) == 1) {
    write_whole(STDERR_FILENO, message.data(), message.size());
  }
}

Progress_Line::Progress_Line(std::string what) : what_(std::move(what)) {
  if (isatty(STDERR_FILENO) != 1) {
    return;
  }
  try {
    ticker_ = std::thread([this] { tick(); });
  } catch (const std::exception&) {  // no memory or no thread: do without the line
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
    // Written in parts, because building a string could fail for lack of memory.
    std::cerr << '\r' << what_ << " ... " << ++seconds << " s" << std::flush;
  }
  if (seconds > 0) {
    std::cerr << "\r\x1b[K" << std::flush;
  }
}

}  // namespace kuv::vemora::tools
