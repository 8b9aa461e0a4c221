// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/backup.h"

#include "vemora/embedded_server/persistent/engine/open_engine.h"
#include "vemora/embedded_server/persistent/engine/postgresql_location.h"
#include "vemora/embedded_server/persistent/engine/sqlite_backup.h"
#include "vemora/embedded_server/persistent/engine/sqlite_restore.h"
#include "vemora/embedded_server/persistent/pass_scope.h"

namespace kuv::vemora::embedded_server {

Site_Counts back_up(const std::string& location, std::uint64_t server_id, const std::string& file,
                    std::chrono::milliseconds lock_wait) {
  if (is_postgresql_location(location)) {
    throw Not_In_A_File(
        "backup copies SQLite databases; back up a PostgreSQL database with pg_dump");
  }
  const auto database = Database::open(location, Database::Open_Mode::existing, lock_wait);
  const Pass_Scope turn(database, server_id, Pass_Scope::Mode::roll_back);
  return back_up_sqlite(sqlite_path_of(location), file);
}

Restored_Site restore(const std::string& location, std::uint64_t server_id, const std::string& file,
                      std::chrono::milliseconds lock_wait) {
  if (is_postgresql_location(location)) {
    throw Not_In_A_File(
        "restore replaces SQLite databases; restore a PostgreSQL database from what pg_dump wrote, "
        "with pg_restore or psql");
  }
  return restore_sqlite(sqlite_path_of(location), server_id, file, lock_wait);
}

}  // namespace kuv::vemora::embedded_server
