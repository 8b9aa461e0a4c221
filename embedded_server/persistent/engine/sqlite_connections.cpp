#include "embedded_server/persistent/engine/sqlite_connections.h"

#include <sqlite3.h>

#include <string>

#include "vemora/embedded_server/persistent/database_error.h"

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
  pooled_connection_ptr connection = odb::sqlite::connection_pool_factory::create();
  sqlite3* const handle = connection->handle();
  sqlite3_busy_timeout(handle, static_cast<int>(busy_wait_.count()));
  files_.note_opened(handle);
  char* message = nullptr;
  if (sqlite3_exec(handle, settings, nullptr, nullptr, &message) != SQLITE_OK) {
    const std::string text = message != nullptr ? message : "cannot be set up";
    sqlite3_free(message);
    throw Database_Error(text);
  }
  return connection;
}

}  // namespace kuv::vemora::embedded_server
