// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/trigger_index.h"

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/index/schedule_index.h"
#include "vemora/embedded_server/persistent/mapping/source_row.h"
#include "vemora/trigger_parser/strict_equality.h"

namespace kuv::vemora::embedded_server {

Trigger_Index::Trigger_Index(odb::database& database, const Schedule_Index& schedules) {
  for_each_row<trigger>(database, "id", [&](const trigger& row) {
    records_.emplace(row.id, Entry{std::make_shared<trigger>(row), nullptr});
  });
  load_sources(database);
  load_schedules(database, schedules);
  for (auto& [id, entry] : records_) {
    entry.accepted = std::make_shared<const trigger>(*entry.record);
  }
}

void Trigger_Index::load_sources(odb::database& database) {
  for_each_row<rows::Trigger_Source_Row>(
      database, "trigger_id, position", [&](const rows::Trigger_Source_Row& row) {
        const auto found = records_.find(row.key.trigger_id);
        if (found != records_.end()) {
          found->second.record->sources.insert(rows::to_source(row));
        } else {
          strays_.sources.push_back(row);
        }
      });
}

/// A schedule that the site lost since then is left out: the next pass finds the trigger changed.
void Trigger_Index::load_schedules(odb::database& database, const Schedule_Index& schedules) {
  for_each_row<rows::Trigger_Schedule>(
      database, "record_id, linked_id", [&](const rows::Trigger_Schedule& row) {
        const auto found = records_.find(row.key.record_id);
        std::shared_ptr<schedule> record = schedules.find(row.key.linked_id);
        if (found != records_.end() && record) {
          found->second.record->schedules.insert(Trigger_Mapping_Entry{std::move(record)});
        } else {
          strays_.schedules.push_back(row);
        }
      });
}

std::vector<std::shared_ptr<trigger>> Trigger_Index::all() const {
  std::vector<std::shared_ptr<trigger>> records;
  records.reserve(records_.size());
  for (const auto& [id, entry] : records_) {
    records.push_back(entry.record);
  }
  return records;
}

std::vector<std::shared_ptr<const trigger>> Trigger_Index::all_accepted() const {
  std::vector<std::shared_ptr<const trigger>> records;
  records.reserve(records_.size());
  for (const auto& [id, entry] : records_) {
    records.push_back(entry.accepted);
  }
  return records;
}

std::set<std::uint64_t> Trigger_Index::ids() const {
  std::set<std::uint64_t> ids;
  for (const auto& [id, entry] : records_) {
    ids.insert(ids.end(), id);
  }
  return ids;
}

std::shared_ptr<trigger> Trigger_Index::find(std::uint64_t id) const {
  const auto found = records_.find(id);
  return found == records_.end() ? nullptr : found->second.record;
}

void Trigger_Index::insert(const std::shared_ptr<trigger>& added) {
  note(added->id);
  records_[added->id] = {added, std::make_shared<const trigger>(*added)};
}

void Trigger_Index::replace(const std::shared_ptr<trigger>& changed) {
  note(changed->id);
  Entry& entry = records_.at(changed->id);
  entry.accepted = std::make_shared<const trigger>(*changed);
  if (entry.record != changed) {
    *entry.record = *changed;
  }
}

std::shared_ptr<trigger> Trigger_Index::restore(std::uint64_t id) {
  Entry& entry = records_.at(id);
  entry.record = std::make_shared<trigger>(*entry.accepted);
  return entry.record;
}

void Trigger_Index::erase(std::uint64_t id) {
  note(id);
  records_.erase(id);
}

void Trigger_Index::note(std::uint64_t id) {
  if (touched_.count(id) == 0) {
    const auto found = records_.find(id);
    touched_.emplace(id, found == records_.end() ? nullptr : found->second.accepted);
  }
}

std::map<std::uint64_t, Trigger_Index::Change> Trigger_Index::settle() {
  std::map<std::uint64_t, Change> changes;
  for (auto& [id, stored] : touched_) {
    const auto found = records_.find(id);
    Change change{std::move(stored), found == records_.end() ? nullptr : found->second.accepted};
    const bool same = change.stored && change.now
                          ? strict_equality::same(*change.stored, *change.now)
                          : !change.stored && !change.now;
    if (!same) {
      changes.emplace_hint(changes.end(), id, std::move(change));
    }
  }
  touched_.clear();
  return changes;
}

}  // namespace kuv::vemora::embedded_server
