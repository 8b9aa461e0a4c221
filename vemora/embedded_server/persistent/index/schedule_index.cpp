// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/schedule_index.h"

#include "records-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

Schedule_Index::Schedule_Index(odb::database& database) {
  for_each_row<schedule>(database, "id", [&](const schedule& row) {
    records_.emplace(row.id, std::make_shared<schedule>(row));
  });
}

std::shared_ptr<schedule> Schedule_Index::find(std::uint64_t id) const {
  const auto found = records_.find(id);
  return found == records_.end() ? nullptr : found->second;
}

}  // namespace kuv::vemora::embedded_server
