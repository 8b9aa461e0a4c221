// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_row_writer.h"

#include <fmt/format.h>

#include <odb/sqlite/transaction.hxx>

#include "vemora/embedded_server/persistent/engine/sqlite_pairs.h"
#include "vemora/embedded_server/persistent/engine/tables.h"

namespace kuv::vemora::embedded_server {
namespace {

template <class Row>
void insert_links(const std::vector<Row>& links) {
  Pair_Statement statement(
      odb::sqlite::transaction::current().connection(),
      fmt::format("INSERT INTO {} (record_id, linked_id) VALUES (?, ?)", Table<Row>::name));
  for (const Row& link : links) {
    statement.insert(link.key.record_id, link.key.linked_id);
  }
}

}  // namespace

void SQLite_Row_Writer::insert_all(const Batch& batch) {
  const auto insert = [this, &batch](const auto* rows) {
    if constexpr (is_link<typename std::decay_t<decltype(*rows)>::value_type>) {
      insert_links(*rows);
    } else {
      ODB_Row_Writer::insert_all(batch);
    }
  };
  std::visit(insert, batch);
}

}  // namespace kuv::vemora::embedded_server
