// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/file_traits.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr mode_t permissions = 0777;
constexpr int most_links = 40;  // as many as Linux follows

File_Identity identity_in(const struct stat& status) {
  return {status.st_dev, status.st_ino};
}

/// What all may, as what the group may.
mode_t as_group(mode_t mode) {
  return (mode & ~static_cast<mode_t>(S_IRWXG)) | ((mode & S_IRWXO) << 3U);
}

/// Root gives files away; others can only put theirs into a group of their own.
bool adopt_group(const Descriptor& file, const struct stat& model) {
  const uid_t owner = ::geteuid() == 0 ? model.st_uid : static_cast<uid_t>(-1);
  if (::fchown(file.number(), owner, model.st_gid) == 0) {
    return true;
  }
  struct stat status {};
  return ::fstat(file.number(), &status) == 0 && status.st_gid == model.st_gid;
}

}  // namespace

std::string real_path(const std::string& path) {
  std::filesystem::path found = std::filesystem::absolute(path);
  // One link after the other, for the last may lead to where there is nothing yet.
  std::error_code no_link;
  for (int link = 0; link < most_links; ++link) {
    const std::filesystem::path target = std::filesystem::read_symlink(found, no_link);
    if (no_link) {
      break;
    }
    found = found.parent_path() / target;
  }
  return std::filesystem::weakly_canonical(found).string();
}

std::optional<struct stat> status_of(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? std::make_optional(status) : std::nullopt;
}

std::optional<File_Identity> identity_of(const std::string& path) {
  const auto status = status_of(path);
  return status ? std::make_optional(identity_in(*status)) : std::nullopt;
}

File_Identity identity_of(const Descriptor& file) {
  struct stat status {};
  return ::fstat(file.number(), &status) == 0 ? identity_in(status) : File_Identity();
}

bool may_write(const std::string& path) {
  return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

std::string reason_of(int number) {
  return std::generic_category().message(number);
}

void adopt_traits(const Descriptor& file, const struct stat& model) {
  const mode_t mode = model.st_mode & permissions;
  // The owner first: to change it takes rights away again.
  const mode_t adopted = adopt_group(file, model) ? mode : as_group(mode);
  static_cast<void>(::fchmod(file.number(), adopted));  // somebody else's file stays as it is
}

Descriptor create_like(const std::string& path, const struct stat& model) {
  Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                         model.st_mode & permissions));
  if (file) {
    adopt_traits(file, model);
  }
  return file;
}

void sync_folder_of(const std::string& path) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened || ::fsync(opened.number()) != 0) {
    throw Database_Error(fmt::format("cannot sync the folder {}: {}", folder, reason_of(errno)));
  }
}

}  // namespace kuv::vemora::embedded_server
