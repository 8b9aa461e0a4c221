// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_replaced_site.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <new>

#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/file_traits.h"
#include "vemora/embedded_server/persistent/engine/sqlite_commit.h"
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"
#include "vemora/embedded_server/persistent/engine/sqlite_site.h"

namespace kuv::vemora::embedded_server {
namespace {

// Cameras that are in either site with a topic or a trigger on it that the other one lacks. A CROSS
// JOIN goes from left to right: the subscription of each link is found by its id, but the links of
// a subscription could only be found by reading all.
constexpr const char* note_different_cameras =
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM before.pending_camera;"
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM ("
    " SELECT 0 AS site, camera_id, onvif_topic, NULL AS trigger_id FROM before.subscription"
    " UNION ALL SELECT 0, s.camera_id, s.onvif_topic, l.linked_id"
    " FROM before.subscription_trigger l CROSS JOIN before.subscription s ON s.id = l.record_id"
    " UNION ALL SELECT 1, camera_id, onvif_topic, NULL FROM main.subscription"
    " UNION ALL SELECT 1, s.camera_id, s.onvif_topic, l.linked_id"
    " FROM main.subscription_trigger l CROSS JOIN main.subscription s ON s.id = l.record_id"
    ") WHERE camera_id IS NOT NULL"
    " GROUP BY camera_id, onvif_topic, trigger_id HAVING min(site) = max(site)";

constexpr const char* note_all_cameras =
    "INSERT OR IGNORE INTO main.pending_camera SELECT id FROM main.camera;"
    "INSERT OR IGNORE INTO main.pending_camera SELECT camera_id FROM main.subscription"
    " WHERE camera_id IS NOT NULL;";

/// It may have struck amid the commit.
bool is_sudden(int code) {
  const int kind = code & 0xFF;
  return kind == SQLITE_IOERR || kind == SQLITE_NOMEM;
}

/// No more than that it cannot be read as what it should be.
bool is_unreadable(const SQLite_Fault& fault) {
  return fault.is_damage() || fault.code() == SQLITE_ERROR;
}

[[noreturn]] void fail(int code) {
  const bool other_size = (code & 0xFF) == SQLITE_READONLY;
  throw SQLite_Fault(code, other_size
                               ? "its pages have another size than those of the backup; move it "
                                 "away with the files beside it, then a new one is made"
                               : sqlite3_errstr(code));
}

/// Where it has no memory for the name, SQLite attaches an empty database instead.
void require_name_of_attached(SQLite_Handle& coming) {
  const char* const name = sqlite3_db_filename(coming.get(), "before");
  if (name == nullptr || *name == '\0') {
    fail(SQLITE_NOMEM);
  }
}

[[noreturn]] void fail_not_knowing(int code) {
  throw Commit_Not_Known(
      fmt::format("{}; it is not known whether the backup was restored", sqlite3_errstr(code)));
}

}  // namespace

Replaced_Site::Replaced_Site(const std::string& path, const struct stat& model,
                             std::chrono::milliseconds lock_wait)
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

void Replaced_Site::examine(std::uint64_t server_id) {
  is_damaged_ = false;
  try {
    is_site_ = holds_tables(*file_);
    if (is_site_) {
      require_site(*file_, server_id);
    }
  } catch (const SQLite_Fault& fault) {
    // A database of ours that cannot be read may be replaced: it holds nothing that is usable.
    if (!is_unreadable(fault) || !read_sqlite_header(file_->get()).is_ours) {
      throw;
    }
    is_site_ = false;
    is_damaged_ = fault.is_damage();
  }
}

void Replaced_Site::note_pending_cameras(SQLite_Handle& coming) {
  if (!is_site_ || !note_different(coming)) {
    coming.run(note_all_cameras);
  }
}

/// False if the old site cannot be read.
bool Replaced_Site::note_different(SQLite_Handle& coming) {
  coming.run_with("ATTACH ? AS before", real_path(path_));
  require_name_of_attached(coming);
  try {
    coming.run(note_different_cameras);
  } catch (const SQLite_Fault& fault) {
    if (!is_unreadable(fault)) {
      throw;
    }
    coming.run("DETACH before");
    return false;
  }
  coming.run("DETACH before");
  return true;
}

void Replaced_Site::replace_by(SQLite_Handle& coming) {
  files_.require_in_place();
  if (is_damaged_) {
    replace_what_is_damaged(coming);
  } else {
    // The size of pages is that of the database, unless it is empty.
    file_->run(fmt::format("PRAGMA page_size={}", coming.number("PRAGMA page_size")));
    file_->run("PRAGMA journal_mode=WAL");
    copy_and_know(coming);
  }
  require_in_place_still();
}

/// SQLite takes it for empty then, and keeps it until the commit all the same.
void Replaced_Site::replace_what_is_damaged(SQLite_Handle& coming) {
  sqlite3_db_config(file_->get(), SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
  const int code = copy_from(coming);
  sqlite3_db_config(file_->get(), SQLITE_DBCONFIG_RESET_DATABASE, 0, nullptr);
  if (is_sudden(code)) {
    fail_not_knowing(code);
  }
  if (code != SQLITE_OK) {
    fail(code);
  }
  // Where that fails, the next pass does it.
  sqlite3_exec(file_->get(), "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
}

/// A commit whose sync failed may stand in the log all the same, to be replayed later: so its
/// number is looked for when the log is emptied.
void Replaced_Site::copy_and_know(SQLite_Handle& coming) {
  const std::int64_t before = number_of_last_commit(file_->get());
  const std::int64_t number = number_of_next_commit(before);
  coming.run(fmt::format("PRAGMA user_version={}", number));
  const int code = copy_from(coming);
  if (code == SQLITE_OK) {
    return;
  }
  if (!is_sudden(code)) {
    fail(code);
  }
  const auto last = number_of_last_kept_commit(file_->get());
  if (last == before) {
    fail(code);
  }
  if (last != number) {
    fail_not_knowing(code);
  }
}

/// Answers what SQLite says of it.
int Replaced_Site::copy_from(SQLite_Handle& coming) {
  file_->run("PRAGMA synchronous=FULL");
  sqlite3_backup* const copy = sqlite3_backup_init(file_->get(), "main", coming.get(), "main");
  const int stepped = copy != nullptr ? sqlite3_backup_step(copy, -1) : SQLITE_ERROR;
  const int finished = sqlite3_backup_finish(copy);
  return stepped == SQLITE_DONE ? finished : stepped;
}

void Replaced_Site::require_in_place_still() const {
  try {
    files_.require_in_place();
  } catch (const Database_Error& error) {
    throw Database_Error(fmt::format("{}; the backup was restored into that file", error.what()));
  } catch (const std::bad_alloc&) {
    // The restore has succeeded, and only the check afterwards failed for lack of memory.
  }
}

}  // namespace kuv::vemora::embedded_server
