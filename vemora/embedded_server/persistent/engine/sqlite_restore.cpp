// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_restore.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"
#include "vemora/embedded_server/persistent/engine/sqlite_read_backup.h"
#include "vemora/embedded_server/persistent/engine/sqlite_replaced_site.h"
#include "vemora/embedded_server/persistent/engine/sqlite_site.h"

namespace kuv::vemora::embedded_server {
namespace {

Restored_Site outcome_of(SQLite_Handle& restored) {
  Restored_Site outcome{counts_in(restored), {}};
  restored.for_each("SELECT camera_id FROM pending_camera", [&outcome](sqlite3_stmt* row) {
    outcome.pending_cameras.insert(static_cast<std::uint64_t>(sqlite3_column_int64(row, 0)));
  });
  return outcome;
}

/// The outcome is told of what comes, so that nothing can fail once it is there.
Restored_Site replace(Replaced_Site& site, std::uint64_t server_id, SQLite_Handle& coming) {
  site.examine(server_id);  // before anything is made beside it
  site.lock();
  site.examine(server_id);
  site.note_pending_cameras(coming);
  Restored_Site outcome = outcome_of(coming);
  site.replace_by(coming);
  return outcome;
}

std::string describe(const SQLite_Fault& fault) {
  const bool busy = (fault.code() & 0xFF) == SQLITE_BUSY;
  return busy ? locked_by_another_program(take_vain_wait()) : fault.what();
}

}  // namespace

Restored_Site restore_sqlite(const std::string& database, std::uint64_t server_id,
                             const std::string& file, std::chrono::milliseconds lock_wait) {
  Read_Backup backup(file, database, server_id);
  try {
    Replaced_Site site(database, backup.status(), lock_wait);
    return replace(site, server_id, backup.site());
  } catch (const Commit_Not_Known& fault) {
    throw Restore_Not_Known(fmt::format("database {}: {}", database, fault.what()));
  } catch (const SQLite_Fault& fault) {
    throw Database_Error(fmt::format("database {}: {}", database, describe(fault)));
  } catch (const Database_Error& error) {
    throw Database_Error(fmt::format("database {}: {}", database, error.what()));
  }
}

}  // namespace kuv::vemora::embedded_server
