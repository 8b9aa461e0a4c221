#pragma once

#include <streambuf>
#include <string>

namespace kuv::vemora::tools {

/// While it lives, holds back what is printed to std::cout, so that an outcome is written whole or
/// not at all. What is printed throws where there is no memory for it.
class Outcome_Output {
 public:
  Outcome_Output();
  ~Outcome_Output();
  Outcome_Output(const Outcome_Output&) = delete;
  Outcome_Output& operator=(const Outcome_Output&) = delete;

  /// Forgets what was printed, half an outcome perhaps.
  void discard() noexcept;

  /// Writes what was printed to standard output; false when it could not be written.
  bool deliver() noexcept;

 private:
  class Text : public std::streambuf {
   public:
    std::string text;

   protected:
    int_type overflow(int_type letter) override;
    std::streamsize xsputn(const char* letters, std::streamsize count) override;
  };

  Text text_;
  std::streambuf* before_;
};

/// Writes to a descriptor, without asking for memory; false when it could not be written.
bool write_whole(int descriptor, const char* text, std::size_t size) noexcept;

}  // namespace kuv::vemora::tools
