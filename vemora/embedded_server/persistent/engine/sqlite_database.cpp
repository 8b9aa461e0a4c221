// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_database.h"

#include <fmt/format.h>

#include <odb/sqlite/transaction.hxx>

#include "vemora/embedded_server/persistent/engine/sqlite_pairs.h"

namespace kuv::vemora::embedded_server {

void SQLite_Database::for_each_link(const std::string& table, const Take& take) {
  Pair_Statement rows(
      odb::sqlite::transaction::current().connection(),
      fmt::format("SELECT record_id, linked_id FROM {} ORDER BY linked_id, record_id", table));
  while (rows.next()) {
    take(rows.first(), rows.second());
  }
}

}  // namespace kuv::vemora::embedded_server
