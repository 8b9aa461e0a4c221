// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/descriptor.h"

namespace kuv::vemora::embedded_server {

// What the file system knows of files: which one a path leads to, whose it is, who may do what.

/// A file, by whatever path; two are the same when they are the same file.
struct File_Identity {
  dev_t device = 0;
  ino_t number = 0;
};

inline bool operator==(const File_Identity& left, const File_Identity& right) {
  return left.device == right.device && left.number == right.number;
}

/// The path without links.
std::string real_path(const std::string& path);

/// Nothing where there is no file, or none that may be looked at.
std::optional<struct stat> status_of(const std::string& path);
std::optional<File_Identity> identity_of(const std::string& path);
File_Identity identity_of(const Descriptor& file);

/// Whether this user may write the file.
bool may_write(const std::string& path);

/// What the system says of an error number.
std::string reason_of(int number);

/// Gives a file the mode of another one and, as far as this user may, its owner and its group; in a
/// group of others, the group may what all may.
void adopt_traits(const Descriptor& file, const struct stat& model);

/// Makes a file that is not there yet, with the traits of another one. None, and the reason in
/// errno, when that fails.
Descriptor create_like(const std::string& path, const struct stat& model);

/// Brings what happened to names in the folder of this file to the disk; throws Database_Error.
void sync_folder_of(const std::string& path);

}  // namespace kuv::vemora::embedded_server
