#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

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

void run_script(sqlite3* handle, const char* script) {
  if (sqlite3_exec(handle, script, nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw_fault(handle);
  }
}

}  // namespace kuv::vemora::embedded_server
