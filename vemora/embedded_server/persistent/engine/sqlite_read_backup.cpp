// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_read_backup.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>

#include "vemora/embedded_server/persistent/engine/file_traits.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/engine/sqlite_schema_steps.h"
#include "vemora/embedded_server/persistent/engine/sqlite_site.h"

namespace kuv::vemora::embedded_server {
namespace {

struct stat require_file(const std::string& file, const std::string& database) {
  const auto status = status_of(file);
  if (!status) {
    throw Database_Error(reason_of(errno));
  }
  if (S_ISDIR(status->st_mode)) {
    throw Database_Error("it is a directory");
  }
  if (!S_ISREG(status->st_mode)) {
    throw Database_Error("it is no regular file");
  }
  if (identity_of(file) == identity_of(database)) {
    throw Database_Error("it is the database itself");
  }
  return *status;
}

/// What is in a log belongs to the site too, if the log belongs to this file; nobody can tell.
void require_no_log(const std::string& file) {
  for (const char* const suffix : {"-wal", "-journal"}) {
    const auto log = status_of(file + suffix);
    if (log && log->st_size > 0) {
      throw Database_Error(
          fmt::format("{}{} lies there with what was written last: it is a database at work, no "
                      "backup; let \"backup\" make one of it",
                      file, suffix));
    }
  }
}

/// Whether nobody wrote to the file between two looks at it.
bool same_content(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino &&
         left.st_size == right.st_size && left.st_mtim.tv_sec == right.st_mtim.tv_sec &&
         left.st_mtim.tv_nsec == right.st_mtim.tv_nsec;
}

void copy(SQLite_Handle& from, SQLite_Handle& to) {
  sqlite3_backup* const copying = sqlite3_backup_init(to.get(), "main", from.get(), "main");
  const int stepped = copying != nullptr ? sqlite3_backup_step(copying, -1) : SQLITE_ERROR;
  const int finished = sqlite3_backup_finish(copying);
  if (stepped != SQLITE_DONE || finished != SQLITE_OK) {
    const int code = stepped == SQLITE_DONE ? finished : stepped;
    throw SQLite_Fault(code, sqlite3_errstr(code));
  }
}

}  // namespace

Read_Backup::Read_Backup(const std::string& file, const std::string& database,
                         std::uint64_t server_id)
    // A temporary database: larger ones go to a file that has no name.
    : site_("", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) {
  try {
    read(real_path(file), database, server_id);
  } catch (const Database_Error& error) {
    throw Database_Error(fmt::format("backup {}: {}", file, error.what()));
  }
}

void Read_Backup::read(const std::string& file, const std::string& database,
                       std::uint64_t server_id) {
  status_ = require_file(file, database);
  require_no_log(file);
  {
    SQLite_Handle opened(as_sqlite_uri(file, "immutable=1"),
                         SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    copy(opened, site_);
  }
  const auto now = status_of(file);
  if (!now || !same_content(status_, *now)) {
    throw Database_Error("it was changed while it was read");
  }
  require_no_log(file);
  if (!holds_tables(site_)) {
    throw Database_Error("it holds no site");
  }
  const std::int32_t version = require_site(site_, server_id);
  require_whole(site_);
  run_schema_steps(site_.get(), version);
}

}  // namespace kuv::vemora::embedded_server
