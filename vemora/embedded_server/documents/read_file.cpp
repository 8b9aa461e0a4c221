// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/read_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::embedded_server {
namespace {

[[noreturn]] void fail(const std::string& doing, const std::string& name, int error) {
  throw Document_Error(
      {fmt::format("{} {}: {}", doing, name, std::generic_category().message(error)), {}});
}

/// A file to read from; the destructor closes it unless it is standard input.
class Input {
 public:
  explicit Input(const std::string& path)
      : standard_(path == "-"),
        name_(standard_ ? "standard input" : path),
        descriptor_(standard_ ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      fail("cannot open", name_, errno);
    }
  }
  ~Input() {
    if (!standard_) {
      ::close(descriptor_);
    }
  }
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  const std::string& name() const { return name_; }

  /// In bytes; 0 if that is not known before it is read.
  std::size_t size() const {
    struct stat status {};
    const bool is_known = ::fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
    return is_known ? static_cast<std::size_t>(status.st_size) : 0;
  }

  /// Returns the number of bytes read; 0 at the end of the file.
  std::size_t read(char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, buffer, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
      fail("cannot read", name_, errno);
    }
    return static_cast<std::size_t>(count);
  }

 private:
  bool standard_;
  std::string name_;
  int descriptor_;
};

}  // namespace

std::string read_file(const std::string& path, std::size_t limit) {
  Input input(path);
  std::vector<char> buffer(64 << 10);
  std::string text;
  text.reserve(std::min(input.size(), limit));
  while (const std::size_t count = input.read(buffer.data(), buffer.size())) {
    text.append(buffer.data(), count);
    if (text.size() > limit) {
      throw Document_Error(
          {fmt::format("{} is larger than the maximum size of a document ({} bytes)", input.name(),
                       limit),
           {}});
    }
  }
  return text;
}

}  // namespace kuv::vemora::embedded_server
