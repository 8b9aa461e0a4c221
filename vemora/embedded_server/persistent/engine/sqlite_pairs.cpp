// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_pairs.h"

#include <odb/exceptions.hxx>
#include <odb/sqlite/error.hxx>

namespace kuv::vemora::embedded_server {

Pair_Statement::Pair_Statement(odb::sqlite::connection& connection, const std::string& sql)
    : connection_(connection) {
  sqlite3_stmt* prepared = nullptr;
  require_success(sqlite3_prepare_v2(connection.handle(), sql.c_str(),
                                     static_cast<int>(sql.size() + 1), &prepared, nullptr));
  statement_.reset(prepared);
}

bool Pair_Statement::next() {
  const int stepped = sqlite3_step(statement_.get());
  require_success(stepped);
  return stepped == SQLITE_ROW;
}

void Pair_Statement::insert(std::uint64_t first, std::uint64_t second) {
  sqlite3_bind_int64(statement_.get(), 1, static_cast<sqlite3_int64>(first));
  sqlite3_bind_int64(statement_.get(), 2, static_cast<sqlite3_int64>(second));
  sqlite3_step(statement_.get());
  require_success(sqlite3_reset(statement_.get()));
}

void Pair_Statement::require_success(int code) {
  const int kind = code & 0xFF;
  if (kind == SQLITE_CONSTRAINT) {
    throw odb::object_already_persistent();
  }
  if (kind != SQLITE_OK && kind != SQLITE_ROW && kind != SQLITE_DONE) {
    odb::sqlite::translate_error(kind, connection_);
  }
}

}  // namespace kuv::vemora::embedded_server
