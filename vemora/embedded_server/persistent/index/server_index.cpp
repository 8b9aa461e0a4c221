// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/server_index.h"

#include "records-odb.h"
#include "rows-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

void load_tags(odb::database& database, server& record) {
  using Query = odb::query<rows::Server_Tag>;
  rows::Server_Tag row;
  auto tags = database.query<rows::Server_Tag>(Query::key.record_id == record.id, false);
  for (auto next = tags.begin(); next != tags.end(); ++next) {
    next.load(row);
    record.tags[row.key.name].value = row.value;
  }
}

}  // namespace

std::shared_ptr<server> Server_Index::find(std::uint64_t id) {
  const auto known = records_.find(id);
  if (known != records_.end()) {
    return known->second;
  }
  std::shared_ptr<server> record = database_.find<server>(id);
  if (record) {
    load_tags(database_, *record);
  }
  return records_.emplace(id, std::move(record)).first->second;
}

}  // namespace kuv::vemora::embedded_server
