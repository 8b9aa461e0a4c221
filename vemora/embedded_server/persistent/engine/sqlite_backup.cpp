// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_backup.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "vemora/embedded_server/persistent/engine/file_traits.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/engine/sqlite_site.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Nothing but an older backup goes for a new one.
void require_backup(const std::string& file) {
  const auto status = status_of(file);
  if (status && S_ISDIR(status->st_mode)) {
    throw Database_Error("it is a directory");
  }
  if (status && !S_ISREG(status->st_mode)) {
    throw Database_Error("it is no regular file");
  }
  if (!status || status->st_size == 0) {
    return;
  }
  const SQLite_Handle opened(as_sqlite_uri(file, "immutable=1"),
                             SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
  if (!read_sqlite_header(opened.get()).is_ours) {
    throw Database_Error("it is there already, and no backup of a site");
  }
}

void require_replaceable(const std::string& file, const std::string& database) {
  if (identity_of(file) && identity_of(file) == identity_of(database)) {
    throw Database_Error("it is the database itself");
  }
  require_backup(file);
  // A log that lies there would be taken for one of the backup, and replayed into it.
  for (const char* const suffix : {"-wal", "-journal", "-shm", ".lock"}) {
    if (status_of(file + suffix)) {
      throw Database_Error(
          fmt::format("{}{} lies there: it is a database at work, or was one", file, suffix));
    }
  }
}

/// What a backup is written to until it is complete. One that was cut short leaves it behind, for
/// the next one to use.
class Unfinished_File {
 public:
  Unfinished_File(std::string path, const struct stat& model) : path_(std::move(path)) {
    file_ = Descriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                              S_IRUSR | S_IWUSR));
    struct stat status {};
    if (!file_ || ::fstat(file_.number(), &status) != 0) {
      throw Database_Error(fmt::format("cannot make {}: {}", path_, reason_of(errno)));
    }
    if (!S_ISREG(status.st_mode) || status.st_nlink > 1) {
      throw Database_Error(fmt::format("{} is no file of its own; remove it", path_));
    }
    if (::flock(file_.number(), LOCK_EX | LOCK_NB) != 0 ||
        !(identity_of(path_) == identity_of(file_))) {
      throw Database_Error("another backup is being written to it");
    }
    if (::ftruncate(file_.number(), 0) != 0) {
      const int reason = errno;
      ::unlink(path_.c_str());
      throw Database_Error(fmt::format("cannot write {}: {}", path_, reason_of(reason)));
    }
    adopt_traits(file_, model);
  }

  ~Unfinished_File() {
    if (!renamed_) {
      ::unlink(path_.c_str());
    }
  }
  Unfinished_File(const Unfinished_File&) = delete;
  Unfinished_File& operator=(const Unfinished_File&) = delete;

  const std::string& path() const { return path_; }

  /// On the disk first: what a power cut leaves is the old file or the new one.
  void rename_to(const std::string& name) {
    if (::fsync(file_.number()) != 0) {
      throw Database_Error(fmt::format("cannot sync {}: {}", path_, reason_of(errno)));
    }
    if (std::rename(path_.c_str(), name.c_str()) != 0) {
      throw Database_Error(fmt::format("cannot rename {}: {}", path_, reason_of(errno)));
    }
    renamed_ = true;
    try {
      sync_folder_of(name);
    } catch (const Database_Error& error) {
      throw Database_Error(fmt::format(
          "{}; it is complete, but a power cut may bring back the one before it", error.what()));
    }
  }

 private:
  std::string path_;
  Descriptor file_;
  bool renamed_ = false;
};

/// Row by row, so that a database that cannot be read is no backup, and into a file that needs no
/// log.
void copy(const std::string& database, const std::string& file) {
  SQLite_Handle source(as_sqlite_name(database), SQLITE_OPEN_READWRITE);
  keep_log(source.get());
  source.run_with("VACUUM INTO ?", file);
}

Site_Counts counts_in(const std::string& file) {
  SQLite_Handle opened(as_sqlite_uri(file, "immutable=1"), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
  return counts_in(opened);
}

Site_Counts back_up_to(const std::string& database, const std::string& file) {
  require_replaceable(file, database);
  const auto model = status_of(database);
  if (!model) {
    throw Database_Error("the database is not there any more");
  }
  Unfinished_File copied(file + ".part", *model);
  copy(database, copied.path());
  const Site_Counts counts = counts_in(copied.path());
  copied.rename_to(file);
  return counts;
}

}  // namespace

Site_Counts back_up_sqlite(const std::string& database, const std::string& file) {
  try {
    return back_up_to(real_path(database), real_path(file));
  } catch (const Database_Error& error) {
    throw Database_Error(fmt::format("backup {}: {}", file, error.what()));
  }
}

}  // namespace kuv::vemora::embedded_server
