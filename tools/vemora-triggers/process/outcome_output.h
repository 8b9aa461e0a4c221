// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <streambuf>
#include <string>

namespace kuv::vemora::tools {

/// While it exists, keeps what is printed to std::cout in memory, so that an outcome is written
/// completely or not at all. Printing throws if memory runs out.
class Outcome_Output {
 public:
  Outcome_Output();
  ~Outcome_Output();
  Outcome_Output(const Outcome_Output&) = delete;
  Outcome_Output& operator=(const Outcome_Output&) = delete;

  /// Drops what was printed, which may be half an outcome.
  void discard() noexcept;

  /// Writes what was printed to standard output; returns 0, or the errno of what failed. A reader
  /// that does not want the rest (EPIPE) is no failure.
  int deliver() noexcept;

 private:
  class Text : public std::streambuf {
   public:
    std::string text;

   protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* characters, std::streamsize count) override;
  };

  Text text_;
  std::streambuf* before_;
};

/// Writes to a file descriptor without allocating memory; returns 0, or the errno of what failed.
int write_whole(int descriptor, const char* text, std::size_t size) noexcept;

}  // namespace kuv::vemora::tools
