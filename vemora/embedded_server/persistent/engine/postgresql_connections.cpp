// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"

#include <fmt/format.h>

#include <odb/pgsql/error.hxx>
#include <string_view>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {

PostgreSQL_Result require_success(odb::pgsql::connection& connection, PGresult* result) {
  PostgreSQL_Result owned(result, &PQclear);
  const ExecStatusType status = PQresultStatus(owned.get());
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
    odb::pgsql::translate_error(connection, owned.get());
  }
  return owned;
}

PostgreSQL_Result run_statements(odb::pgsql::connection& connection, const std::string& sql) {
  return require_success(connection, PQexec(connection.handle(), sql.c_str()));
}

std::string first_value(const PostgreSQL_Result& result) {
  return PQgetvalue(result.get(), 0, 0);
}

std::string quoted_identifier(odb::pgsql::connection& connection, const std::string& name) {
  const std::unique_ptr<char, decltype(&PQfreemem)> quoted(
      PQescapeIdentifier(connection.handle(), name.data(), name.size()), &PQfreemem);
  if (!quoted) {
    throw Database_Error(PQerrorMessage(connection.handle()));
  }
  return quoted.get();
}

/// A pass sees one state of the site from its first statement to its commit. Texts stand in memory
/// as UTF-8, and order as bytes.
PostgreSQL_Connections::pooled_connection_ptr PostgreSQL_Connections::create() {
  // A connection is given back where nothing may fail: the pool has room for it from the beginning.
  connections_.reserve(connections_.size() + in_use_ + 1);
  pooled_connection_ptr connection = odb::pgsql::connection_pool_factory::create();
  const char* const encoding = PQparameterStatus(connection->handle(), "server_encoding");
  if (encoding == nullptr || std::string_view(encoding) != "UTF8") {
    throw Database_Error("its encoding is not UTF8");
  }
  run_statements(*connection,
                 fmt::format("SET client_min_messages = warning;"
                             "SET client_encoding = 'UTF8';"
                             "SET search_path = {};"
                             "SET lock_timeout = {};"
                             "SET SESSION CHARACTERISTICS AS TRANSACTION ISOLATION LEVEL "
                             "REPEATABLE READ",
                             quoted_identifier(*connection, schema_), lock_wait_.count()));
  return connection;
}

}  // namespace kuv::vemora::embedded_server
