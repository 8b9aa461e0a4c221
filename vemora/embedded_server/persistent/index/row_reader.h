// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <odb/database.hxx>
#include <odb/query-dynamic.hxx>
#include <odb/result.hxx>
#include <string>

#include "vemora/embedded_server/persistent/index/link_source.h"

namespace kuv::vemora::embedded_server {

/// Hands every row of a table to `take`, in the order of `order_by` (column names), with one
/// statement and one row in memory at a time.
template <class Row, class Take>
void for_each_row(odb::database& database, const char* order_by, Take take) {
  auto rows = database.query<Row>(odb::query<Row>(std::string("ORDER BY ") + order_by), false);
  Row row;
  for (auto next = rows.begin(); next != rows.end(); ++next) {
    next.load(row);
    take(row);
  }
}

/// The same for the links in a table of that name, see Link_Source.
inline void for_each_link(odb::database& database, const char* table,
                          const Link_Source::Take& take) {
  dynamic_cast<Link_Source&>(database).for_each_link(table, take);
}

}  // namespace kuv::vemora::embedded_server
