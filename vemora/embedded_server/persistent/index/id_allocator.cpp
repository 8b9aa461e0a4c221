// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/id_allocator.h"

#include "rows-odb.h"

namespace kuv::vemora::embedded_server {

Id_Allocator Id_Allocator::load(odb::database& database, const std::string& kind) {
  rows::Id_Allocation row;
  return database.find(kind, row) ? Id_Allocator(kind, row.next_id) : Id_Allocator(kind);
}

void Id_Allocator::save(odb::database& database) {
  rows::Id_Allocation row;
  row.kind = kind_;
  row.next_id = next_;
  if (!stored_) {
    if (next_ != 1) {
      database.persist(row);
      stored_ = next_;
    }
  } else if (*stored_ != next_) {
    database.update(row);
    stored_ = next_;
  }
}

}  // namespace kuv::vemora::embedded_server
