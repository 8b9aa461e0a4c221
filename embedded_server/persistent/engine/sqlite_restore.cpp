#include "embedded_server/persistent/engine/sqlite_restore.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <optional>

#include "embedded_server/persistent/engine/file_lock.h"
#include "embedded_server/persistent/engine/file_traits.h"
#include "embedded_server/persistent/engine/other_programs.h"
#include "embedded_server/persistent/engine/sqlite_files.h"
#include "embedded_server/persistent/engine/sqlite_locks.h"
#include "embedded_server/persistent/engine/sqlite_read_backup.h"
#include "embedded_server/persistent/engine/sqlite_site.h"

namespace kuv::vemora::embedded_server {
namespace {

// Cameras that are in either site with a topic or a trigger on it that the other one lacks.
constexpr const char* note_different_cameras =
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM before.pending_camera;"
    "CREATE TEMP VIEW link_before AS"
    " SELECT s.camera_id, s.onvif_topic, l.linked_id FROM before.subscription s"
    " LEFT JOIN before.subscription_trigger l ON l.record_id = s.id WHERE s.camera_id IS NOT NULL;"
    "CREATE TEMP VIEW link_after AS"
    " SELECT s.camera_id, s.onvif_topic, l.linked_id FROM main.subscription s"
    " LEFT JOIN main.subscription_trigger l ON l.record_id = s.id WHERE s.camera_id IS NOT NULL;"
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM"
    " (SELECT * FROM link_before EXCEPT SELECT * FROM link_after);"
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM"
    " (SELECT * FROM link_after EXCEPT SELECT * FROM link_before);"
    "DROP VIEW link_before; DROP VIEW link_after;";

constexpr const char* note_all_cameras =
    "INSERT OR IGNORE INTO main.pending_camera SELECT id FROM main.camera;"
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM main.subscription"
    " WHERE camera_id IS NOT NULL;";

/// The database that goes, held until the other one is in its place.
class Target {
 public:
  /// Made like the model where there is none.
  Target(const std::string& path, const struct stat& model, std::chrono::milliseconds lock_wait)
      : path_(path), lock_wait_(lock_wait), files_(path) {
    if (status_of(path)) {
      files_.require_writable();
    } else if (!create_like(real_path(path), model) && errno != EEXIST) {
      throw Database_Error(fmt::format("cannot make it: {}", reason_of(errno)));
    }
    file_.emplace(as_sqlite_name(path), SQLITE_OPEN_READWRITE);
    wait_for_locks(file_->get(), lock_wait_);
    files_.note_opened(file_->get());
  }

  void lock() { lock_.emplace(files_.lock_file(), path_, lock_wait_); }

  /// Refuses what is not to be replaced.
  void examine(std::uint64_t server_id) {
    try {
      is_site_ = holds_tables(*file_);
      if (is_site_) {
        require_site(*file_, server_id);
      }
    } catch (const SQLite_Fault& fault) {
      // Of a database of ours that cannot be read, nothing is lost when it goes.
      const bool unreadable = fault.is_damage() || fault.code() == SQLITE_ERROR;
      if (!unreadable || !read_sqlite_header(file_->get()).is_ours) {
        throw;
      }
      is_site_ = false;
      is_damaged_ = fault.is_damage();
    }
  }

  /// Notes in the site that comes which of its cameras have other subscriptions from now on.
  void note_pending_cameras(SQLite_Handle& coming) {
    if (!is_site_ || !note_different(coming)) {
      coming.run(note_all_cameras);
    }
  }

  /// What is written is all there after the commit, and none of it before.
  void replace_by(SQLite_Handle& coming) {
    files_.require_in_place();
    if (is_damaged_) {
      // SQLite then takes it for empty, and still keeps it until the commit.
      sqlite3_db_config(file_->get(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    } else {
      // Of one that is empty.
      file_->run(fmt::format("PRAGMA page_size={}", coming.number("PRAGMA page_size")));
      file_->run("PRAGMA journal_mode=WAL");
    }
    file_->run("PRAGMA synchronous=FULL");
    copy_from(coming);
    if (is_damaged_) {
      sqlite3_db_config(file_->get(), SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr);
      file_->run("PRAGMA journal_mode=WAL");
    }
    require_in_place_still();
  }

  static std::string describe(const SQLite_Fault& fault) {
    const bool busy = (fault.code() & 0xFF) == SQLITE_BUSY;
    return busy ? locked_by_another_program(take_vain_wait()) : fault.what();
  }

 private:
  bool note_different(SQLite_Handle& coming) {
    coming.run_with("ATTACH ? AS before", real_path(path_));
    try {
      coming.run(note_different_cameras);
    } catch (const SQLite_Fault& fault) {
      const bool unreadable = fault.is_damage() || fault.code() == SQLITE_ERROR;
      if (!unreadable) {
        throw;
      }
      coming.run("DROP VIEW IF EXISTS link_before; DROP VIEW IF EXISTS link_after");
      coming.run("DETACH before");
      return false;
    }
    coming.run("DETACH before");
    return true;
  }

  void copy_from(SQLite_Handle& coming) {
    sqlite3_backup* const copy = sqlite3_backup_init(file_->get(), "main", coming.get(), "main");
    const int stepped = copy != nullptr ? sqlite3_backup_step(copy, -1) : SQLITE_ERROR;
    const int finished = sqlite3_backup_finish(copy);
    if (stepped == SQLITE_DONE && finished == SQLITE_OK) {
      return;
    }
    const int code = stepped == SQLITE_DONE ? finished : stepped;
    throw SQLite_Fault(code, words_for(code));
  }

  static std::string words_for(int code) {
    switch (code & 0xFF) {
      case SQLITE_READONLY:  // their size cannot change in a database that uses the log
        return "its pages have another size than those of the backup; move it away with the files "
               "beside it, then a new one is made";
      case SQLITE_IOERR:
        return fmt::format("{}; it is not known whether the backup was restored",
                           sqlite3_errstr(code));
      default:
        return sqlite3_errstr(code);
    }
  }

  void require_in_place_still() const {
    try {
      files_.require_in_place();
    } catch (const Database_Error& error) {
      throw Database_Error(fmt::format("{}; the backup was restored into that file", error.what()));
    }
  }

  std::string path_;
  std::chrono::milliseconds lock_wait_;
  SQLite_Files files_;
  std::optional<File_Lock> lock_;
  std::optional<SQLite_Handle> file_;
  bool is_site_ = false;
  bool is_damaged_ = false;
};

Restored_Site outcome_of(SQLite_Handle& restored) {
  Restored_Site outcome{counts_in(restored), {}};
  restored.for_each("SELECT camera_id FROM pending_camera", [&outcome](sqlite3_stmt* row) {
    outcome.pending_cameras.insert(static_cast<std::uint64_t>(sqlite3_column_int64(row, 0)));
  });
  return outcome;
}

Restored_Site replace(const std::string& database, std::uint64_t server_id, Read_Backup& backup,
                      std::chrono::milliseconds lock_wait) {
  Target target(database, backup.status(), lock_wait);
  try {
    target.examine(server_id);  // before anything is made beside it
    target.lock();
    target.examine(server_id);
    target.note_pending_cameras(backup.site());
    target.replace_by(backup.site());
    return outcome_of(backup.site());
  } catch (const SQLite_Fault& fault) {
    throw Database_Error(target.describe(fault));
  }
}

}  // namespace

Restored_Site restore_sqlite(const std::string& database, std::uint64_t server_id,
                             const std::string& file, std::chrono::milliseconds lock_wait) {
  Read_Backup backup(file, database, server_id);
  try {
    return replace(database, server_id, backup, lock_wait);
  } catch (const Database_Error& error) {
    throw Database_Error(fmt::format("database {}: {}", database, error.what()));
  }
}

}  // namespace kuv::vemora::embedded_server
