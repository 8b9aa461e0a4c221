// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_database.h"

#include <fmt/format.h>

#include <odb/pgsql/transaction.hxx>

#include "vemora/embedded_server/persistent/engine/postgresql_copy.h"

namespace kuv::vemora::embedded_server {

void PostgreSQL_Database::for_each_link(const std::string& table, const Take& take) {
  copy_pairs(
      odb::pgsql::transaction::current().connection(),
      fmt::format("SELECT record_id, linked_id FROM {} ORDER BY linked_id, record_id", table),
      take);
}

}  // namespace kuv::vemora::embedded_server
