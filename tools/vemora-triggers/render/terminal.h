// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tools/vemora-triggers/render/table_layout.h"

namespace kuv::vemora::tools {

/// Prints a document byte for byte; on a terminal, with control characters as escapes.
void print_text(const std::string& text);

/// The text in red if standard output is a terminal and NO_COLOR is not set.
std::string in_red(const std::string& text);

/// Prints rows under headings, so that they fit the terminal, or the width that COLUMNS names, if
/// need be without the columns that are dispensable.
void print_table(const Row& headings, const std::vector<Row>& rows,
                 const std::set<std::size_t>& dispensable = {});

/// Prints a line, or several where the terminal is narrower than the text.
void print_folded(const std::string& text);

/// Says on a terminal that the command waits for another process.
void tell_of_wait() noexcept;

/// While it exists, shows on a terminal how long an activity has been going on.
class Progress_Line {
 public:
  explicit Progress_Line(std::string what);
  ~Progress_Line();
  Progress_Line(const Progress_Line&) = delete;
  Progress_Line& operator=(const Progress_Line&) = delete;

 private:
  void tick();

  std::string what_;
  std::mutex mutex_;
  std::condition_variable finished_;
  bool done_ = false;
  std::thread ticker_;
};

}  // namespace kuv::vemora::tools
