// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <odb/pgsql/connection.hxx>
#include <string>

#include "vemora/embedded_server/persistent/engine/postgresql_values.h"

namespace kuv::vemora::embedded_server {

// Rows that are copied flow: the server works on the first while the last are still on their way.
// Everything throws what ODB would; the transaction is to be rolled back then, with which the
// connection is in a plain state again.

/// One COPY into a table. What the server finds wrong with a row is thrown by finish() at the
/// latest.
class Copy_Into_Table {
 public:
  /// `columns` are names with commas between them.
  Copy_Into_Table(odb::pgsql::connection& connection, const std::string& table,
                  const std::string& columns);

  /// Begins a row; its values follow, one for each column.
  void begin_row(std::size_t columns);

  template <class Value>
  void add(const Value& value) {
    values_.add(value);
  }

  std::size_t bytes() const { return sent_ + values_.bytes().size(); }

  /// To be called behind the last row.
  void finish();

 private:
  void send();

  odb::pgsql::connection& connection_;
  Binary_Values values_;
  std::size_t sent_ = 0;
};

/// Hands the rows of a statement that answers two numbers, neither of them NULL, to `take`, each as
/// soon as it has come.
void copy_pairs(odb::pgsql::connection& connection, const std::string& statement,
                const std::function<void(std::uint64_t, std::uint64_t)>& take);

}  // namespace kuv::vemora::embedded_server
