// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_engine.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <limits>
#include <odb/sqlite/exceptions.hxx>
#include <odb/sqlite/transaction.hxx>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/sqlite_connections.h"
#include "vemora/embedded_server/persistent/engine/sqlite_database.h"
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"
#include "vemora/embedded_server/persistent/engine/sqlite_row_writer.h"
#include "vemora/embedded_server/persistent/engine/sqlite_schema_steps.h"
#include "vemora/embedded_server/persistent/engine/sqlite_session.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

namespace kuv::vemora::embedded_server {
namespace {

// The limit on texts is one on rows too. No table of ours has more than nine columns; each takes at
// most nine bytes in the head of a row, and eight more when it is a number.
constexpr std::size_t numbers_of_a_row = 160;

void require_file(const std::string& path, Open_Mode mode) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (std::filesystem::is_directory(status)) {
    throw Database_Error(fmt::format("{} is a directory, not a database", path));
  }
  if (mode == Open_Mode::existing && !std::filesystem::exists(status)) {
    throw Database_Error(fmt::format("there is no database {}; \"init\" makes one", path));
  }
}

sqlite3* current_handle() {
  return odb::sqlite::transaction::current().connection().handle();
}

}  // namespace

SQLite_Engine::SQLite_Engine(const std::string& path, Open_Mode mode,
                             std::chrono::milliseconds lock_wait)
    : path_(path), files_(path), lock_wait_(lock_wait) {
  require_file(path, mode);
  // Foreign keys are not declared, see the schema, and a cache of its own keeps a connection clear
  // of the table locks that shared ones have.
  const int create = mode == Open_Mode::create_if_absent ? SQLITE_OPEN_CREATE : 0;
  const int access = files_.is_read_only() ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI
                                           : SQLITE_OPEN_READWRITE | create;
  database_ = std::make_unique<SQLite_Database>(
      // Who may only read makes no file beside it that would then be theirs.
      files_.is_read_only() ? as_sqlite_uri(path, "readonly_shm=1") : as_sqlite_name(path),
      access | SQLITE_OPEN_PRIVATECACHE, false, "",
      std::make_unique<SQLite_Connections>(files_, lock_wait));
  rows_ = std::make_unique<SQLite_Row_Writer>(*database_);
}

SQLite_Engine::~SQLite_Engine() = default;

odb::database& SQLite_Engine::odb() {
  return *database_;
}

std::unique_ptr<Engine::Session> SQLite_Engine::open_session(Session::Access access) {
  auto session = std::make_unique<SQLite_Session>(
      odb::sqlite::connection_ptr(database_->connection()), lock_wait_);
  if (access == Session::Access::exclusive) {
    files_.require_writable();
    files_.require_in_place();
    session->lock(files_.lock_file(), path_);
    files_.require_in_place();
    if (!files_.uses_log()) {
      session->use_write_ahead_log();
      files_.note_log();
    }
  }
  return session;
}

std::optional<std::int32_t> SQLite_Engine::schema_version() {
  const auto connection = database_->connection();
  sqlite3* const handle = connection->handle();
  if (query_number(handle, "SELECT count(*) FROM sqlite_master") == 0) {
    return std::nullopt;
  }
  if (query_number(handle, "PRAGMA application_id") != sqlite_application_id) {
    throw Database_Error("it is a database of another program");
  }
  return static_cast<std::int32_t>(
      query_number(handle, "SELECT coalesce(max(schema_version), 0) FROM site"));
}

void SQLite_Engine::migrate(std::int32_t present) {
  run_schema_steps(current_handle(), present);
}

bool SQLite_Engine::can_hold(std::initializer_list<std::string_view> texts) {
  const int limit = sqlite3_limit(current_handle(), SQLITE_LIMIT_LENGTH, -1);
  std::size_t size = numbers_of_a_row;
  for (const std::string_view text : texts) {
    size += text.size();
  }
  return size <= static_cast<std::size_t>(limit);
}

bool SQLite_Engine::holds_transaction() {
  return odb::transaction::has_current() && sqlite3_get_autocommit(current_handle()) == 0;
}

/// ODB takes every constraint that a new row breaks for a key that is there already. The connection
/// knows which one it was.
std::optional<std::string> SQLite_Engine::broken_constraint() {
  if (!odb::transaction::has_current() ||
      &odb::transaction::current().database() != database_.get()) {
    return std::nullopt;
  }
  sqlite3* const handle = current_handle();
  return (sqlite3_errcode(handle) & 0xFF) == SQLITE_CONSTRAINT
             ? std::make_optional<std::string>(sqlite3_errmsg(handle))
             : std::nullopt;
}

std::string SQLite_Engine::describe(const std::exception& fault) {
  if (dynamic_cast<const odb::timeout*>(&fault) != nullptr) {
    return locked_by_another_program(take_vain_wait());
  }
  if (dynamic_cast<const odb::object_already_persistent*>(&fault) != nullptr) {
    return broken_constraint().value_or(fault.what());
  }
  const auto* const refused = dynamic_cast<const odb::sqlite::database_exception*>(&fault);
  return refused != nullptr ? refused->message() : fault.what();
}

}  // namespace kuv::vemora::embedded_server
