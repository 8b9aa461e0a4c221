// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_connections.h"

#include <sqlite3.h>

#include <string>

#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

namespace kuv::vemora::embedded_server {
namespace {

// A commit is on the disk when it returns (FULL). The cache is large enough that a pass over a big
// site does not read its own pages twice.
constexpr const char* settings =
    "PRAGMA synchronous=FULL;"
    "PRAGMA cache_size=-262144;"
    "PRAGMA temp_store=MEMORY;";

}  // namespace

SQLite_Connections::pooled_connection_ptr SQLite_Connections::create() {
  // A connection is given back where nothing may fail: the pool has room for it from the beginning.
  connections_.reserve(connections_.size() + in_use_ + 1);
  pooled_connection_ptr connection = odb::sqlite::connection_pool_factory::create();
  sqlite3* const handle = connection->handle();
  wait_for_locks(handle, lock_wait_);
  files_.note_opened(handle);
  run_script(handle, settings);
  return connection;
}

}  // namespace kuv::vemora::embedded_server
