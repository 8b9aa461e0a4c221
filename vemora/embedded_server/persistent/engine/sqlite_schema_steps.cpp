// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_schema_steps.h"

#include <fmt/format.h>

#include <cstddef>
#include <map>
#include <new>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sqlite_schema.h"
#include "vemora/embedded_server/persistent/engine/broken_rule.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"
#include "vemora/embedded_server/texts/sha256.h"

namespace kuv::vemora::embedded_server {
namespace {

static_assert(sqlite_schema.size() == current_schema_version);

/// What hangs on tables and goes with them: by name, the statements that make it.
using Attachments = std::map<std::string, std::string>;

constexpr const char* attachments =
    "SELECT name, sql FROM sqlite_master WHERE type IN ('index', 'trigger') AND sql IS NOT NULL";

Attachments attachments_in(sqlite3* handle) {
  Attachments found;
  query_rows(handle, attachments,
             [&found](sqlite3_stmt* row) { found.emplace(text_in(row, 0), text_in(row, 1)); });
  return found;
}

/// By table, the names of its columns, generated ones too.
using Columns = std::map<std::string, std::set<std::string>>;

constexpr const char* columns_of_tables =
    "SELECT m.name, c.name FROM sqlite_master m, pragma_table_xinfo(m.name) c WHERE m.type = "
    "'table'";

Columns columns_in(sqlite3* handle) {
  Columns found;
  query_rows(handle, columns_of_tables,
             [&found](sqlite3_stmt* row) { found[text_in(row, 0)].insert(text_in(row, 1)); });
  return found;
}

/// What other programs added to the tables of a site.
struct Additions {
  Attachments attachments;
  Columns columns;
};

Additions additions_in(sqlite3* handle, std::int32_t version) {
  SQLite_Handle model(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  make_tables_of_version(model, version);
  Additions additions{attachments_in(handle), {}};
  for (const auto& [name, statement] : attachments_in(model.get())) {
    additions.attachments.erase(name);
  }
  Columns present = columns_in(handle);
  for (const auto& [table, columns] : columns_in(model.get())) {
    std::set<std::string>& added = additions.columns[table] = std::move(present[table]);
    for (const std::string& column : columns) {
      added.erase(column);
    }
  }
  return additions;
}

/// What stands in a column is nothing that could be made again.
void require_columns(sqlite3* handle, const Columns& added) {
  Columns left = columns_in(handle);
  std::vector<std::string> lost;
  for (const auto& [table, columns] : added) {
    for (const std::string& column : columns) {
      if (left[table].count(column) == 0) {
        lost.push_back(fmt::format("{}.{}", table, column));
      }
    }
  }
  if (!lost.empty()) {
    throw Unfit_For_Step(fmt::format(
        "another program added columns to tables that have to be made anew, and what is "
        "in these columns would be lost: {}; copy it to a table of its own, drop the "
        "columns, and try again",
        fmt::join(lost, ", ")));
  }
}

void make_again(sqlite3* handle, const Attachments& attachments) {
  const Attachments left = attachments_in(handle);
  for (const auto& [name, statement] : attachments) {
    if (left.count(name) == 0) {
      run_script(handle, statement.c_str());
    }
  }
}

/// As long as it lives, a table that is renamed leaves triggers and views as they are written: they
/// mean the new table that has the name from then on.
class Renaming_Leaves_References {
 public:
  explicit Renaming_Leaves_References(sqlite3* handle) : handle_(handle) { set(1); }
  ~Renaming_Leaves_References() { set(0); }
  Renaming_Leaves_References(const Renaming_Leaves_References&) = delete;
  Renaming_Leaves_References& operator=(const Renaming_Leaves_References&) = delete;

 private:
  void set(int on) { sqlite3_db_config(handle_, SQLITE_DBCONFIG_LEGACY_ALTER_TABLE, on, nullptr); }

  sqlite3* handle_;
};

void answer_sha256(sqlite3_context* context, int, sqlite3_value** values) {
  try {
    const auto* const bytes = static_cast<const char*>(sqlite3_value_blob(values[0]));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(values[0]));
    if (bytes == nullptr && size != 0) {
      return sqlite3_result_error_nomem(context);
    }
    SHA256 digest;
    digest.add({bytes, size});
    const std::string text = digest.finish();
    sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

/// As long as it lives, statements can call the function sha256, which PostgreSQL has and SQLite
/// lacks.
class SHA256_Function {
 public:
  explicit SHA256_Function(sqlite3* handle) : handle_(handle) {
    const int code = set(&answer_sha256);
    if (code != SQLITE_OK) {
      throw SQLite_Fault(code, sqlite3_errstr(code));
    }
  }
  ~SHA256_Function() { set(nullptr); }
  SHA256_Function(const SHA256_Function&) = delete;
  SHA256_Function& operator=(const SHA256_Function&) = delete;

 private:
  int set(void (*answer)(sqlite3_context*, int, sqlite3_value**)) {
    return sqlite3_create_function(handle_, "sha256", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                   nullptr, answer, nullptr, nullptr);
  }

  sqlite3* handle_;
};

void run_step(sqlite3* handle, const char* step) {
  constexpr std::string_view refusal = "CHECK constraint failed: ";
  try {
    run_script(handle, step);
  } catch (const Database_Error& fault) {
    const std::string_view words = fault.what();
    if (sqlite3_extended_errcode(handle) == SQLITE_CONSTRAINT_CHECK &&
        words.substr(0, refusal.size()) == refusal) {
      throw Broken_Rule(step, words.substr(refusal.size()));
    }
    throw;
  }
}

}  // namespace

void make_tables_of_version(SQLite_Handle& empty, std::int32_t version) {
  const SHA256_Function function(empty.get());
  for (std::int32_t step = 0; step < version; ++step) {
    empty.run(sqlite_schema[static_cast<std::size_t>(step)]);
  }
}

void run_schema_steps(sqlite3* handle, std::int32_t present) {
  const Additions additions = additions_in(handle, present);
  const Renaming_Leaves_References guard(handle);
  const SHA256_Function function(handle);
  for (auto step = static_cast<std::size_t>(present); step < sqlite_schema.size(); ++step) {
    run_step(handle, sqlite_schema[step]);
  }
  require_columns(handle, additions.columns);
  make_again(handle, additions.attachments);
  if (present == 0) {
    run_script(handle, fmt::format("PRAGMA application_id={}", sqlite_application_id).c_str());
  }
  run_script(handle, fmt::format("INSERT INTO site (id, schema_version) VALUES (1, {0}) "
                                 "ON CONFLICT DO UPDATE SET schema_version = {0}",
                                 current_schema_version)
                         .c_str());
}

}  // namespace kuv::vemora::embedded_server
