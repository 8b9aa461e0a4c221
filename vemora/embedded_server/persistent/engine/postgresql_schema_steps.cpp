// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_schema_steps.h"

#include <fmt/format.h>

#include <string_view>
#include <vector>

#include "postgresql_schema.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/broken_rule.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/lock_wait.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::string_view check_violation = "23514";

static_assert(postgresql_schema.size() == current_schema_version);

/// The names of the tables that the steps up to a version make, as texts of SQL.
std::vector<std::string> tables_made_until(std::int32_t version) {
  constexpr std::string_view words = "CREATE TABLE ";
  std::vector<std::string> names;
  for (std::size_t step = 0; step < static_cast<std::size_t>(version); ++step) {
    const std::string_view text = postgresql_schema[step];
    for (auto at = text.find(words); at != std::string_view::npos; at = text.find(words, at + 1)) {
      const std::size_t begin = at + words.size();
      names.push_back(fmt::format("'{}'", text.substr(begin, text.find(' ', begin) - begin)));
    }
  }
  return names;
}

/// Those tables, as far as they are there, in the words of a statement.
std::string tables_of_version(odb::pgsql::connection& connection, std::int32_t version) {
  const std::vector<std::string> names = tables_made_until(version);
  return names.empty()
             ? std::string()
             : first_value(run_statements(
                   connection,
                   fmt::format("SELECT string_agg(quote_ident(relname), ', ') FROM pg_class JOIN "
                               "pg_namespace ON pg_namespace.oid = relnamespace WHERE nspname = "
                               "current_schema() AND relkind = 'r' AND relname IN ({})",
                               fmt::join(names, ", "))));
}

/// Keeps everybody off these tables at once; false, with none of them in hand, when somebody is at
/// one of them. Waiting for one with others in hand would be waiting for readers that wait for
/// those.
bool lock_all(odb::pgsql::connection& connection, const std::string& tables) {
  run_statements(connection, "SAVEPOINT before_locks");
  const std::string lock = fmt::format("LOCK TABLE {} IN ACCESS EXCLUSIVE MODE NOWAIT", tables);
  PostgreSQL_Result result(PQexec(connection.handle(), lock.c_str()), &PQclear);
  const char* const state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  const bool is_taken = state != nullptr && state == lock_not_available;
  if (is_taken) {
    run_statements(connection, "ROLLBACK TO SAVEPOINT before_locks");
  } else {
    require_success(connection, result.release());
  }
  run_statements(connection, "RELEASE SAVEPOINT before_locks");
  return !is_taken;
}

void wait_for_tables(odb::pgsql::connection& connection, std::int32_t version,
                     std::chrono::milliseconds longest) {
  const std::string tables = tables_of_version(connection, version);
  const Lock_Wait wait(longest);
  while (!tables.empty() && !lock_all(connection, tables)) {
    if (!wait.pause()) {
      throw Database_Error(locked_by_another_program(wait.waited()));
    }
  }
}

void make_schema_if_absent(odb::pgsql::connection& connection, const std::string& schema) {
  const auto is_absent = run_statements(connection, "SELECT current_schema() IS NULL");
  if (first_value(is_absent) == "t") {
    run_statements(connection, "CREATE SCHEMA " + quoted_identifier(connection, schema));
  }
}

void run_step(odb::pgsql::connection& connection, const char* step) {
  PostgreSQL_Result result(PQexec(connection.handle(), step), &PQclear);
  const char* const state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  const char* const rule = PQresultErrorField(result.get(), PG_DIAG_CONSTRAINT_NAME);
  if (state != nullptr && state == check_violation && rule != nullptr) {
    throw Broken_Rule(step, rule);
  }
  require_success(connection, result.release());
}

}  // namespace

void run_schema_steps(odb::pgsql::connection& connection, const std::string& schema,
                      std::int32_t present, std::chrono::milliseconds lock_wait) {
  wait_for_tables(connection, present, lock_wait);
  make_schema_if_absent(connection, schema);
  for (auto step = static_cast<std::size_t>(present); step < postgresql_schema.size(); ++step) {
    run_step(connection, postgresql_schema[step]);
  }
  run_statements(connection, fmt::format("INSERT INTO site (id, schema_version) VALUES (1, {0}) "
                                         "ON CONFLICT (id) DO UPDATE SET schema_version = {0}",
                                         current_schema_version));
}

}  // namespace kuv::vemora::embedded_server
