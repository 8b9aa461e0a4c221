// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/eta_camera_index.h"

#include <algorithm>
#include <unordered_set>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

ETA_Camera_Index::ETA_Camera_Index(odb::database& database, const Camera_Index& cameras,
                                   const Trigger_Index& triggers)
    : cameras_(cameras), triggers_(triggers), records_(Id_Allocator::load(database, "eta_camera")) {
  load_records(database);
  records_.load_links(database, "eta_camera_trigger", triggers_.all());
}

void ETA_Camera_Index::load_records(odb::database& database) {
  for_each_row<rows::ETA_Camera>(database, "id", [&](const rows::ETA_Camera& row) {
    auto record = std::make_shared<Record>();
    record->id = row.id;
    const std::shared_ptr<camera> watched = cameras_.find(row.camera_id);
    record->camera = watched ? odb::lazy_shared_ptr<camera>(watched)
                             : odb::lazy_shared_ptr<camera>(database, row.camera_id);
    by_camera_.emplace(row.camera_id, &records_.load(std::move(record)));
  });
}

std::shared_ptr<eta_camera> ETA_Camera_Index::find_by_camera(std::uint64_t camera_id) const {
  const auto found = by_camera_.find(camera_id);
  return found == by_camera_.end() ? nullptr : found->second->record;
}

ETA_Camera_Index::List ETA_Camera_Index::matching(const Query& query) const {
  std::unordered_set<std::uint64_t, Id_Hash> named;
  for (const std::shared_ptr<camera>& record : query.cameras) {
    named.insert(record->id);
  }
  const bool inside = query.cameras_match == Query::Cameras::matching;
  const auto is_unwanted = [&](const std::shared_ptr<Record>& record) {
    return !named.empty() && (named.count(record->camera_id()) != 0) != inside;
  };
  List found;
  if (query.trigger) {
    for (const Entry* const entry : records_.holders(query.trigger->id).entries()) {
      found.push_back(entry->record);
    }
  } else {
    found = all();
  }
  found.erase(std::remove_if(found.begin(), found.end(), is_unwanted), found.end());
  return found;
}

bool ETA_Camera_Index::add(const std::shared_ptr<Record>& added) {
  const auto is_stored = [this](const std::shared_ptr<trigger>& held) {
    return triggers_.contains(held->id);
  };
  if (!added->camera || !cameras_.find(added->camera_id()) || find_by_camera(added->camera_id()) ||
      !std::all_of(added->triggers.begin(), added->triggers.end(), is_stored)) {
    return false;
  }
  by_camera_.emplace(added->camera_id(), &records_.add(added));
  return true;
}

bool ETA_Camera_Index::update(const std::shared_ptr<Record>& changed) {
  return records_.update(changed, [this](std::uint64_t id) { return triggers_.find(id); });
}

void ETA_Camera_Index::delete_without_triggers() {
  records_.delete_without_triggers(
      [](const Record&) { return true; },
      [this](const Record& record) { by_camera_.erase(record.camera_id()); });
}

ETA_Camera_Index::Net_Changes ETA_Camera_Index::settle() {
  Records::Net_Changes changes = records_.settle();
  Net_Changes net;
  for (const std::shared_ptr<Record>& record : changes.added) {
    net.added.push_back({record->id, record->camera_id()});
  }
  for (const std::shared_ptr<Record>& record : changes.deleted) {
    net.deleted.push_back(record->id);
  }
  net.links = std::move(changes.links);
  return net;
}

}  // namespace kuv::vemora::embedded_server
