#include "embedded_server/persistent/engine/file_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

#include "embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::chrono::milliseconds poll_interval(5);
constexpr mode_t lock_file_mode = 0666;  // less the umask, as the database itself

std::string reason_of(int number) {
  return std::generic_category().message(number);
}

}  // namespace

File_Lock::File_Lock(const std::string& path, std::chrono::milliseconds wait)
    : descriptor_(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, lock_file_mode)) {
  if (descriptor_ < 0) {
    throw Database_Error(fmt::format("cannot open the lock file {}: {}", path, reason_of(errno)));
  }
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (::flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
    const int reason = errno;
    if (reason == EWOULDBLOCK && std::chrono::steady_clock::now() < deadline) {
      std::this_thread::sleep_for(poll_interval);
      continue;
    }
    if (reason == EINTR) {
      continue;
    }
    ::close(descriptor_);
    throw Database_Error(reason == EWOULDBLOCK
                             ? at_work_elsewhere(wait)
                             : fmt::format("cannot lock {}: {}", path, reason_of(reason)));
  }
}

File_Lock::~File_Lock() {
  ::close(descriptor_);
}

}  // namespace kuv::vemora::embedded_server
