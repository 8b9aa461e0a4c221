// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/sqlite_connection.h"

#include <odb/sqlite/database.hxx>

#include "vemora/embedded_server/persistent/engine/engine.h"

namespace kuv::test {

sqlite3* idle_connection(vemora::embedded_server::Database& database) {
  auto& odb = dynamic_cast<odb::sqlite::database&>(database.engine().odb());
  return odb.connection()->handle();
}

std::int64_t rows_written(sqlite3* connection) {
  return sqlite3_total_changes64(connection);
}

std::string setting(sqlite3* connection, const std::string& name) {
  std::string answer;
  const auto keep = [](void* kept, int, char** values, char**) {
    *static_cast<std::string*>(kept) = values[0];
    return 0;
  };
  char* complaint = nullptr;
  sqlite3_exec(connection, ("PRAGMA " + name).c_str(), keep, &answer, &complaint);
  if (complaint != nullptr) {
    answer = complaint;
    sqlite3_free(complaint);
  }
  return answer;
}

Statement_Trace::Statement_Trace(sqlite3* connection) : connection_(connection) {
  const auto note = [](unsigned, void* trace, void* statement, void*) {
    static_cast<Statement_Trace*>(trace)->statements_.emplace_back(
        sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
    return 0;
  };
  sqlite3_trace_v2(connection_, SQLITE_TRACE_STMT, note, this);
}

Statement_Trace::~Statement_Trace() {
  sqlite3_trace_v2(connection_, 0, nullptr, nullptr);
}

}  // namespace kuv::test
