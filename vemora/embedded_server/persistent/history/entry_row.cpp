// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/entry_row.h"

#include "vemora/embedded_server/persistent/history/id_ranges.h"

namespace kuv::vemora::embedded_server {
namespace {

std::string ranges_in(const std::vector<std::uint64_t>& ids) {
  return ranges_of({ids.begin(), ids.end()});
}

}  // namespace

void note_changes(const Changes& changes, rows::History_Entry& row) {
  const Change_Counts counts = counts_of(changes);
  row.trigger_writes = counts.triggers.written;
  row.trigger_deletions = counts.triggers.deleted;
  row.subscription_writes = counts.subscriptions.written;
  row.subscription_deletions = counts.subscriptions.deleted;
  row.subscription_link_writes = counts.subscription_links.written;
  row.subscription_link_deletions = counts.subscription_links.deleted;
  row.detection_writes = counts.detection.written;
  row.detection_deletions = counts.detection.deleted;
  row.detection_link_writes = counts.detection_links.written;
  row.detection_link_deletions = counts.detection_links.deleted;
  row.triggers_created = ranges_in(changes.triggers.added);
  row.triggers_changed = ranges_in(changes.triggers.updated);
  row.triggers_deleted = ranges_in(changes.triggers.deleted);
}

History_Entry entry_of(const rows::History_Entry& row) {
  History_Entry entry;
  entry.pass = row.pass;
  entry.at = row.at;
  entry.by = row.author;
  entry.command = row.command;
  entry.note = row.note;
  entry.status = static_cast<History_Entry::Status>(row.status);
  entry.errors = row.error_count;
  entry.changes = {{row.trigger_writes, row.trigger_deletions},
                   {row.subscription_writes, row.subscription_deletions},
                   {row.subscription_link_writes, row.subscription_link_deletions},
                   {row.detection_writes, row.detection_deletions},
                   {row.detection_link_writes, row.detection_link_deletions}};
  entry.triggers_created = ids_in(row.triggers_created);
  entry.triggers_changed = ids_in(row.triggers_changed);
  entry.triggers_deleted = ids_in(row.triggers_deleted);
  entry.reconciled = ids_in(row.reconciled);
  return entry;
}

}  // namespace kuv::vemora::embedded_server
