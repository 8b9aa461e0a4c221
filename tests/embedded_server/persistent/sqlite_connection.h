// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"

namespace kuv::test {

/// The connection that the next pass over an SQLite database will use; for tests that count what it
/// does or make things hard for it. No pass may be open.
sqlite3* idle_connection(vemora::embedded_server::Database& database);

/// The rows that were inserted, updated and deleted through a connection so far.
std::int64_t rows_written(sqlite3* connection);

/// What a connection answers to "PRAGMA name".
std::string setting(sqlite3* connection, const std::string& name);

/// Notes down the statements that a connection executes, as long as it lives.
class Statement_Trace {
 public:
  explicit Statement_Trace(sqlite3* connection);
  ~Statement_Trace();
  Statement_Trace(const Statement_Trace&) = delete;
  Statement_Trace& operator=(const Statement_Trace&) = delete;

  const std::vector<std::string>& statements() const { return statements_; }

 private:
  sqlite3* connection_;
  std::vector<std::string> statements_;
};

}  // namespace kuv::test
