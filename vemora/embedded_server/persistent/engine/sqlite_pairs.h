// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <odb/sqlite/connection.hxx>
#include <string>

namespace kuv::vemora::embedded_server {

/// A statement over pairs of ids. Its faults are those of the statements of ODB.
class Pair_Statement {
 public:
  Pair_Statement(odb::sqlite::connection& connection, const std::string& sql);

  /// A query: whether there is another pair, which first() and second() then answer.
  bool next();
  std::uint64_t first() const { return number(0); }
  std::uint64_t second() const { return number(1); }

  /// A statement that adds a row, with two parameters.
  void insert(std::uint64_t first, std::uint64_t second);

 private:
  std::uint64_t number(int column) const {
    return static_cast<std::uint64_t>(sqlite3_column_int64(statement_.get(), column));
  }
  void require_success(int code);

  odb::sqlite::connection& connection_;
  std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> statement_{nullptr, &sqlite3_finalize};
};

}  // namespace kuv::vemora::embedded_server
