// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

#include <memory>
#include <new>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"

namespace kuv::vemora::embedded_server {
namespace {

[[noreturn]] void throw_fault(sqlite3* handle) {
  throw Database_Error(sqlite3_errcode(handle) == SQLITE_BUSY
                           ? locked_by_another_program(take_vain_wait())
                           : sqlite3_errmsg(handle));
}

}  // namespace

std::int64_t query_number(sqlite3* handle, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  const int prepared = sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr);
  const int stepped = prepared == SQLITE_OK ? sqlite3_step(statement) : prepared;
  const std::int64_t number = stepped == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
  sqlite3_finalize(statement);
  if (stepped != SQLITE_ROW) {
    throw_fault(handle);
  }
  return number;
}

void query_rows(sqlite3* handle, const char* sql,
                const std::function<void(sqlite3_stmt*)>& action) {
  sqlite3_stmt* prepared = nullptr;
  int state = sqlite3_prepare_v2(handle, sql, -1, &prepared, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(prepared,
                                                                         &sqlite3_finalize);
  if (state == SQLITE_OK) {
    while ((state = sqlite3_step(prepared)) == SQLITE_ROW) {
      action(prepared);
    }
  }
  if (state != SQLITE_DONE) {
    throw_fault(handle);
  }
}

std::string text_in(sqlite3_stmt* row, int column) {
  const auto* const bytes = sqlite3_column_text(row, column);
  if (bytes == nullptr) {
    throw std::bad_alloc();
  }
  return reinterpret_cast<const char*>(bytes);
}

void run_script(sqlite3* handle, const char* script) {
  if (sqlite3_exec(handle, script, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw_fault(handle);
  }
}

}  // namespace kuv::vemora::embedded_server
