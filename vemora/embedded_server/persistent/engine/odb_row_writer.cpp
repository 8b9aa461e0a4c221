// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/odb_row_writer.h"

#include <odb/database.hxx>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/tables.h"

namespace kuv::vemora::embedded_server {
namespace {

template <class Row>
auto id_of(const Row& row) {
  return odb::object_traits<Row>::id(row);
}

}  // namespace

void ODB_Row_Writer::insert_all(const Batch& batch) {
  const auto insert = [this](const auto* rows) {
    for (const auto& row : *rows) {
      database_.persist(row);
    }
  };
  std::visit(insert, batch);
}

void ODB_Row_Writer::put_all(const Batch& batch) {
  const auto put = [this](const auto* rows) {
    typename std::decay_t<decltype(*rows)>::value_type present;
    for (const auto& row : *rows) {
      if (!database_.find(id_of(row), present)) {
        database_.persist(row);
      } else if (!same_row(present, row)) {
        database_.update(row);
      }
    }
  };
  std::visit(put, batch);
}

void ODB_Row_Writer::erase_all(const Batch& batch) {
  const auto erase = [this](const auto* rows) {
    using Row = typename std::decay_t<decltype(*rows)>::value_type;
    for (const Row& row : *rows) {
      database_.erase<Row>(id_of(row));
    }
  };
  std::visit(erase, batch);
}

}  // namespace kuv::vemora::embedded_server
