// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_site.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <set>
#include <vector>

#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/engine/sqlite_schema_steps.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

namespace kuv::vemora::embedded_server {
namespace {

std::set<std::string> columns_in(SQLite_Handle& file) {
  std::set<std::string> columns;
  file.for_each(
      "SELECT m.name || '.' || c.name FROM sqlite_master m, pragma_table_info(m.name) c "
      "WHERE m.type = 'table'",
      [&columns](sqlite3_stmt* row) { columns.insert(text_in(row, 0)); });
  return columns;
}

/// The columns that a site of that version has.
std::set<std::string> columns_of_version(std::int32_t version) {
  SQLite_Handle model(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  make_tables_of_version(model, version);
  return columns_in(model);
}

}  // namespace

bool holds_tables(SQLite_Handle& file) {
  return file.number("SELECT count(*) FROM sqlite_master") != 0;
}

std::int32_t require_site(SQLite_Handle& file, std::uint64_t server_id) {
  if (file.number("PRAGMA application_id") != sqlite_application_id) {
    throw Database_Error("it is a database of another program");
  }
  const auto version =
      static_cast<std::int32_t>(file.number("SELECT schema_version FROM site WHERE id = 1"));
  require_known_version(version);
  file.for_each("SELECT server_id FROM site WHERE server_id IS NOT NULL",
                [server_id](sqlite3_stmt* row) {
                  const auto owner = static_cast<std::uint64_t>(sqlite3_column_int64(row, 0));
                  if (owner != server_id) {
                    throw Database_Error(
                        fmt::format("it belongs to server {}, not to server {}", owner, server_id));
                  }
                });
  return version;
}

void require_whole(SQLite_Handle& file) {
  const std::string found = file.text("PRAGMA integrity_check(1)");
  if (found != "ok") {
    throw Database_Error(fmt::format("it is damaged: {}", found));
  }
  const auto version =
      static_cast<std::int32_t>(file.number("SELECT schema_version FROM site WHERE id = 1"));
  const std::set<std::string> present = columns_in(file);
  for (const std::string& column : columns_of_version(version)) {
    if (present.count(column) == 0) {
      throw Database_Error(fmt::format("it is damaged: {} is missing", column));
    }
  }
}

Site_Counts counts_in(SQLite_Handle& file) {
  const auto count = [&file](const char* table) {
    return static_cast<std::uint64_t>(file.number(fmt::format("SELECT count(*) FROM {}", table)));
  };
  return {count("trigger_record"), count("subscription"), count("camera")};
}

}  // namespace kuv::vemora::embedded_server
