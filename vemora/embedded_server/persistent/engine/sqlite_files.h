// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/engine/file_traits.h"

struct sqlite3;

namespace kuv::vemora::embedded_server {

/// Marks a file as a database of ours, for file(1) and us.
inline constexpr std::int64_t sqlite_application_id = 0x564D5247;

/// What the first bytes of a file say about it; all false if it is not an SQLite database.
struct SQLite_Header {
  bool is_ours = false;
  bool is_foreign = false;  ///< another program's, or nothing that SQLite knows
  bool uses_log = false;    ///< readers need the files beside it
};

/// The header of the file that a connection opened, read without a lock.
SQLite_Header read_sqlite_header(sqlite3* handle);

/// The path as a name that SQLite takes for a file (":memory:" would be none).
std::string as_sqlite_name(const std::string& path);

/// The same as a URI with a query, such as "immutable=1".
std::string as_sqlite_uri(const std::string& path, const std::string& query);

/// Makes the last connection leave the log, emptied, and its index beside the database. So both
/// files keep their owner, and users who may only read find them.
void keep_log(sqlite3* handle);

/// The files of a database: FILE itself, the log (FILE-wal), the log's index (FILE-shm) and the
/// lock file (FILE.lock). May be used from any thread.
class SQLite_Files {
 public:
  explicit SQLite_Files(const std::string& path);

  /// Whether this user may read the database, and may not write it.
  bool is_read_only() const { return read_only_; }

  /// Whether the database uses the log; a backup does not yet, until it is written to.
  bool uses_log() const { return uses_log_; }
  void note_log() { uses_log_ = true; }

  std::string lock_file() const { return file() + ".lock"; }

  /// To be called when a connection is opened, before it reads: has it keep the log, and makes the
  /// log and its index with the traits of the database, where it uses them. Throws Database_Error
  /// where that cannot be done, and when another file was opened than by the connections before.
  void note_opened(sqlite3* handle);

  /// Throws Database_Error when the path does not lead to what was opened.
  void require_in_place() const;

  /// Throws Database_Error when this user may not write.
  void require_writable() const;

 private:
  std::string file() const { return real_path(path_); }
  std::vector<std::string> log_files() const;
  void make_log() const;

  std::string path_;  ///< whatever folder becomes the current one
  bool read_only_;
  std::atomic<bool> uses_log_ = false;
  mutable std::mutex mutex_;
  std::optional<File_Identity> opened_;
};

}  // namespace kuv::vemora::embedded_server
