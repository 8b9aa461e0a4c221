// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/write_changes.h"

#include <odb/database.hxx>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/row_changes.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/mapping/source_row.h"
#include "vemora/embedded_server/persistent/pass/pending_cameras.h"
#include "vemora/embedded_server/persistent/pass/rows_by_trigger.h"
#include "vemora/embedded_server/persistent/pass/site_row.h"

namespace kuv::vemora::embedded_server {
namespace {

/// What a pass changed in the tables of triggers.
struct Trigger_Rows {
  Row_Changes<trigger> triggers;
  Row_Changes<rows::Trigger_Source_Row> sources;
  Row_Changes<rows::Trigger_Schedule> schedules;
};

/// The row of a trigger that is there, with its own columns only.
std::vector<trigger> own_row(const trigger* record) {
  if (record == nullptr) {
    return {};
  }
  trigger row;
  row.id = record->id;
  row.name = record->name;
  return {row};
}

std::vector<rows::Trigger_Source_Row> source_rows(const trigger* record) {
  std::vector<rows::Trigger_Source_Row> sources;
  if (record != nullptr) {
    std::uint32_t position = 0;
    for (const Trigger_Source& source : record->sources) {
      sources.push_back(rows::to_row(record->id, position++, source));
    }
  }
  return sources;
}

std::vector<rows::Trigger_Schedule> schedule_rows(const trigger* record) {
  std::vector<rows::Trigger_Schedule> schedules;
  if (record != nullptr) {
    for (const Trigger_Mapping_Entry& entry : record->schedules) {
      schedules.push_back({{record->id, entry.schedule->id}});
    }
  }
  return schedules;
}

Trigger_Rows trigger_rows(const Site_Index::Net_Changes& net) {
  Trigger_Rows rows;
  for (const auto& [id, change] : net.triggers) {
    const trigger* const stored = change.stored.get();
    const trigger* const now = change.now.get();
    append_difference(own_row(stored), own_row(now), rows.triggers);
    append_difference(source_rows(stored), source_rows(now), rows.sources);
    append_difference(schedule_rows(stored), schedule_rows(now), rows.schedules);
  }
  return rows;
}

void write_triggers(Row_Writer& writer, const Site_Index::Net_Changes& net) {
  const Trigger_Rows rows = trigger_rows(net);
  writer.erase(net.strays.sources);
  writer.erase(net.strays.schedules);
  writer.erase(rows.sources.deleted);
  writer.erase(rows.schedules.deleted);
  writer.erase(rows.triggers.deleted);
  writer.put(rows.triggers.changed);
  writer.put(rows.sources.changed);
  writer.insert(rows.triggers.added);
  writer.insert(rows.sources.added);
  writer.insert(rows.schedules.added);
}

/// Records of one table, and their links.
template <class Record_Row, class Link_Row, class Net>
void write_records(Row_Writer& writer, const Net& net) {
  std::vector<Record_Row> deleted;
  for (const std::uint64_t id : net.deleted) {
    Record_Row row;
    row.id = id;
    deleted.push_back(row);
  }
  // Deleted first: a new record may need the unique values of a deleted one.
  writer.erase(deleted);
  writer.insert(net.added);
  writer.erase(rows_by_trigger<Link_Row>(net.links.deleted));
  writer.insert(rows_by_trigger<Link_Row>(net.links.added));
}

template <class Item>
void append(const std::vector<Item>& from, std::vector<Item>& to) {
  to.insert(to.end(), from.begin(), from.end());
}

}  // namespace

void write_changes(Engine& engine, const Site_Index::Net_Changes& net) {
  Row_Writer& writer = engine.rows();
  write_triggers(writer, net);
  const Subscription_Index::Net_Changes& subscriptions = net.subscriptions;
  writer.erase(subscriptions.deleted_details.tags);
  writer.erase(subscriptions.deleted_details.cameras);
  write_records<rows::Subscription, rows::Subscription_Trigger>(writer, subscriptions);
  writer.insert(subscriptions.added_details.tags);
  writer.insert(subscriptions.added_details.cameras);
  write_records<rows::ETA_Camera, rows::ETA_Camera_Trigger>(writer, net.eta_cameras);
  note_pending(engine, subscriptions.cameras);
}

bool is_claimed(odb::database& database) {
  return load_site(database).server_id.has_value();
}

void claim_for(odb::database& database, std::uint64_t server_id) {
  rows::Site site = load_site(database);
  if (!site.server_id) {
    site.server_id = server_id;
    database.update(site);
  }
}

void append_changes(const Site_Index::Net_Changes& net, Changes& report) {
  for (const auto& [id, change] : net.triggers) {
    auto& list = !change.stored ? report.triggers.added
                 : !change.now  ? report.triggers.deleted
                                : report.triggers.updated;
    list.push_back(id);
  }
  for (const rows::Subscription& added : net.subscriptions.added) {
    report.subscriptions.added.push_back(added.id);
  }
  append(net.subscriptions.deleted, report.subscriptions.deleted);
  append(net.subscriptions.links.added, report.subscription_links.added);
  append(net.subscriptions.links.deleted, report.subscription_links.deleted);
  for (const rows::ETA_Camera& added : net.eta_cameras.added) {
    report.eta_cameras.added.push_back(added.id);
  }
  append(net.eta_cameras.deleted, report.eta_cameras.deleted);
  append(net.eta_cameras.links.added, report.eta_camera_links.added);
  append(net.eta_cameras.links.deleted, report.eta_camera_links.deleted);
}

}  // namespace kuv::vemora::embedded_server
