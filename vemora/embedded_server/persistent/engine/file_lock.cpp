// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/file_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>

#include <cerrno>
#include <thread>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/file_traits.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/told_wait.h"

namespace kuv::vemora::embedded_server {
namespace {

using Time = std::chrono::steady_clock::time_point;

constexpr std::chrono::milliseconds poll_interval(5);

[[noreturn]] void refuse(const std::string& path, int reason) {
  if (reason == ELOOP) {
    throw Database_Error(fmt::format("the lock file {} is a symbolic link; remove it", path));
  }
  const auto status = status_of(path);
  const std::string whose =
      reason == EACCES && status
          ? fmt::format("; it belongs to user {}: give it the owner and the mode of the database",
                        status->st_uid)
          : "";
  throw Database_Error(
      fmt::format("cannot open the lock file {}: {}{}", path, reason_of(reason), whose));
}

Descriptor open_or_create(const std::string& path, const struct stat& model) {
  while (true) {
    Descriptor file(::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file && errno == ENOENT) {
      file = create_like(path, model);
    }
    if (file) {
      return file;
    }
    if (errno != EEXIST && errno != EINTR) {  // somebody else has just made it
      refuse(path, errno);
    }
  }
}

/// A file of ours is empty and has one name. Another one is nobody's to change.
void adopt_traits_of(const Descriptor& file, const std::string& path, const struct stat& model) {
  struct stat status {};
  if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    throw Database_Error(fmt::format("the lock file {} is no regular file; remove it", path));
  }
  const bool same_mode = ((status.st_mode ^ model.st_mode) & 0777U) == 0;
  const bool same_owner = status.st_uid == model.st_uid && status.st_gid == model.st_gid;
  if (status.st_nlink == 1 && status.st_size == 0 && !(same_mode && same_owner)) {
    adopt_traits(file, model);
  }
}

Descriptor open_lock_file(const std::string& path, const std::string& model_path) {
  const auto model = status_of(model_path);
  if (!model) {
    throw Database_Error(fmt::format("there is no file {} to lock", model_path));
  }
  Descriptor file = open_or_create(path, *model);
  adopt_traits_of(file, path, *model);
  return file;
}

void lock(const Descriptor& file, const std::string& path, std::chrono::milliseconds wait,
          Time deadline) {
  const Time begin = std::chrono::steady_clock::now();
  bool told = false;
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    const int reason = errno;
    const Time now = std::chrono::steady_clock::now();
    if (reason == EWOULDBLOCK && !told && now >= begin + long_wait) {
      tell_of_long_wait();
      told = true;
    }
    if (reason == EWOULDBLOCK && now < deadline) {
      std::this_thread::sleep_for(poll_interval);
    } else if (reason == EWOULDBLOCK) {
      throw Database_Error(at_work_elsewhere(wait));
    } else if (reason != EINTR) {
      throw Database_Error(fmt::format("cannot lock {}: {}", path, reason_of(reason)));
    }
  }
}

}  // namespace

File_Lock::File_Lock(const std::string& path, const std::string& model,
                     std::chrono::milliseconds wait) {
  const Time deadline = std::chrono::steady_clock::now() + wait;
  do {
    file_ = open_lock_file(path, model);
    lock(file_, path, wait, deadline);
    // Who deletes the file while others wait makes them wait for nothing: they lock the next one.
  } while (!(identity_of(path) == identity_of(file_)));
}

}  // namespace kuv::vemora::embedded_server
