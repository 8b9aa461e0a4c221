#include "system/repositories/sqlite_connection.h"

#include <odb/sqlite/database.hxx>

#include "embedded_server/persistent/engine/engine.h"

namespace kuv::test {

sqlite3* idle_connection(vemora::embedded_server::Database& database) {
  auto& odb = dynamic_cast<odb::sqlite::database&>(database.engine().odb());
  return odb.connection()->handle();
}

std::int64_t rows_written(sqlite3* connection) {
  return sqlite3_total_changes64(connection);
}

}  // namespace kuv::test
