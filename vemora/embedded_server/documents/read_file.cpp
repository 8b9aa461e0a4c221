#include "vemora/embedded_server/documents/read_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::embedded_server {
namespace {

[[noreturn]] void complain(const std::string& doing, const std::string& name, int fault) {
  throw Document_Error(
      {fmt::format("{} {}: {}", doing, name, std::generic_category().message(fault)), {}});
}

/// A file to read from, closed at the end unless it is standard input.
class Input {
 public:
  explicit Input(const std::string& path)
      : standard_(path == "-"),
        name_(standard_ ? "standard input" : path),
        descriptor_(standard_ ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      complain("cannot open", name_, errno);
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

  /// How many bytes there were; none at the end.
  std::size_t read(char* where, std::size_t room) {
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, where, room);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
      complain("cannot read", name_, errno);
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
  std::vector<char> piece(64 << 10);
  std::string text;
  while (const std::size_t count = input.read(piece.data(), piece.size())) {
    text.append(piece.data(), count);
    if (text.size() > limit) {
      throw Document_Error(
          {fmt::format("{} is larger than a document may be ({} bytes)", input.name(), limit), {}});
    }
  }
  return text;
}

}  // namespace kuv::vemora::embedded_server
