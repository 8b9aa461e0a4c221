// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"

#include <optional>
#include <utility>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/lock_wait.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"

namespace kuv::vemora::embedded_server {
namespace {

// Takes the lock and writes nothing.
constexpr const char* no_change = "UPDATE site SET schema_version = schema_version WHERE 0";

// One statement waits at a time on a thread, and whoever is told of its end is on that thread.
thread_local std::optional<Lock_Wait> statement_wait;
thread_local std::chrono::milliseconds vain_wait{0};

/// What SQLite calls each time when a lock is not to be had: whether to ask for it again.
int pause_statement(void* longest, int pauses_before) {
  if (pauses_before == 0 || !statement_wait) {
    statement_wait.emplace(*static_cast<std::chrono::milliseconds*>(longest));
  }
  if (statement_wait->pause()) {
    return 1;
  }
  vain_wait = statement_wait->waited();
  return 0;
}

}  // namespace

void wait_for_locks(sqlite3* handle, std::chrono::milliseconds& longest) {
  sqlite3_busy_handler(handle, &pause_statement, &longest);
}

std::chrono::milliseconds take_vain_wait() {
  return std::exchange(vain_wait, std::chrono::milliseconds(0));
}

void take_write_lock(sqlite3* handle, std::chrono::milliseconds longest) {
  const Lock_Wait wait(longest);
  while (sqlite3_exec(handle, no_change, nullptr, nullptr, nullptr) != SQLITE_OK) {
    if (sqlite3_errcode(handle) != SQLITE_BUSY) {
      throw Database_Error(sqlite3_errmsg(handle));
    }
    if (sqlite3_extended_errcode(handle) == SQLITE_BUSY_SNAPSHOT) {
      throw Database_Error(changed_by_another_program());
    }
    if (!wait.pause()) {
      throw Database_Error(locked_by_another_program(wait.waited()));
    }
  }
}

}  // namespace kuv::vemora::embedded_server
