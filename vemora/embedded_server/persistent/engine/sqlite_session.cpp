// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_session.h"

#include <sqlite3.h>

#include "vemora/embedded_server/persistent/engine/sqlite_commit.h"
#include "vemora/embedded_server/persistent/engine/sqlite_locks.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

namespace kuv::vemora::embedded_server {
void SQLite_Session::use_write_ahead_log() {
  run_script(connection_->handle(), "PRAGMA journal_mode=WAL");
}

odb::transaction_impl* SQLite_Session::begin() {
  rows_before_ = sqlite3_total_changes64(connection_->handle());
  return connection_->begin();
}

odb::transaction_impl* SQLite_Session::begin_immediately() {
  rows_before_ = sqlite3_total_changes64(connection_->handle());
  return connection_->begin_immediate();
}

void SQLite_Session::begin_writing() {
  take_write_lock(connection_->handle(), lock_wait_);
}

void SQLite_Session::commit(odb::transaction& transaction) {
  commit_and_know(*connection_, transaction,
                  sqlite3_total_changes64(connection_->handle()) != rows_before_);
}

}  // namespace kuv::vemora::embedded_server
