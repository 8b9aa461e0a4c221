#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kuv::vemora::tools {

/// Prints a document to the byte; on a terminal, as a person may be shown it.
void print_text(const std::string& text);

/// The text in the colour of failures, where standard output is a terminal that wants colours.
std::string in_red(const std::string& text);

/// Prints rows under headings, each column as wide as it needs to be.
void print_table(const std::vector<std::string>& headings,
                 const std::vector<std::vector<std::string>>& rows);

/// While it lives, says on a terminal how long something has been going on.
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
