#include "vemora/embedded_server/persistent/history/entry_row.h"

#include "vemora/embedded_server/persistent/history/id_ranges.h"

namespace kuv::vemora::embedded_server {
namespace {

template <class Item>
void note_count(const Changes::Of<Item>& changes, std::uint64_t& written, std::uint64_t& deleted) {
  written = changes.added.size() + changes.updated.size();
  deleted = changes.deleted.size();
}

std::string ranges_in(const std::vector<std::uint64_t>& ids) {
  return ranges_of({ids.begin(), ids.end()});
}

}  // namespace

void note_changes(const Changes& changes, rows::History_Entry& row) {
  note_count(changes.triggers, row.trigger_writes, row.trigger_deletions);
  note_count(changes.subscriptions, row.subscription_writes, row.subscription_deletions);
  note_count(changes.subscription_links, row.subscription_link_writes,
             row.subscription_link_deletions);
  note_count(changes.eta_cameras, row.detection_writes, row.detection_deletions);
  note_count(changes.eta_camera_links, row.detection_link_writes, row.detection_link_deletions);
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
  entry.triggers = {row.trigger_writes, row.trigger_deletions};
  entry.subscriptions = {row.subscription_writes, row.subscription_deletions};
  entry.subscription_links = {row.subscription_link_writes, row.subscription_link_deletions};
  entry.detection = {row.detection_writes, row.detection_deletions};
  entry.detection_links = {row.detection_link_writes, row.detection_link_deletions};
  entry.triggers_created = ids_in(row.triggers_created);
  entry.triggers_changed = ids_in(row.triggers_changed);
  entry.triggers_deleted = ids_in(row.triggers_deleted);
  entry.reconciled = ids_in(row.reconciled);
  return entry;
}

}  // namespace kuv::vemora::embedded_server
