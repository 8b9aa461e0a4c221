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

/// What the first bytes of a file say of it; all false where it is no SQLite database.
struct SQLite_Header {
  bool is_ours = false;
  bool is_foreign = false;  ///< another program's, or nothing that SQLite knows
  bool uses_log = false;    ///< readers need the files beside it
};

/// Of what a connection opened, read without a lock.
SQLite_Header read_sqlite_header(sqlite3* handle);

/// SQLite takes some names for other things than files (":memory:").
std::string as_sqlite_name(const std::string& path);

/// The same as a URI, with what is to be asked for behind it ("immutable=1").
std::string as_sqlite_uri(const std::string& path, const std::string& query);

/// Has a connection leave the log beside the database when it is the last one: emptied, and with
/// it the log's index. So they belong to whom they belonged, and are there for who may only read.
void keep_log(sqlite3* handle);

/// The files of a database: its own, and beside it the log ("-wal"), the log's index ("-shm") and
/// the lock. May be used from any thread.
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
