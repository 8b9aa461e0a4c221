#include "embedded_server/persistent/pass/write_changes.h"

#include <odb/database.hxx>

#include "embedded_server/persistent/engine/engine.h"
#include "embedded_server/persistent/engine/row_writer.h"
#include "embedded_server/persistent/index/trigger_values.h"
#include "embedded_server/persistent/mapping/source_row.h"
#include "embedded_server/persistent/pass/pending_cameras.h"
#include "records-odb.h"
#include "rows-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The rows of the triggers that a pass wrote, table by table.
struct Trigger_Rows {
  std::vector<trigger> added;
  std::vector<trigger> renamed;
  std::vector<trigger> deleted;
  std::vector<rows::Trigger_Source_Row> sources_added;
  std::vector<rows::Trigger_Source_Row> sources_deleted;
  std::vector<rows::Trigger_Schedule> schedules_added;
  std::vector<rows::Trigger_Schedule> schedules_deleted;
};

/// The columns of a trigger's own row.
trigger plain(const trigger& record) {
  trigger row;
  row.id = record.id;
  row.name = record.name;
  return row;
}

void append_sources(const trigger& record, std::vector<rows::Trigger_Source_Row>& to) {
  std::uint32_t position = 0;
  for (const Trigger_Source& source : record.sources) {
    to.push_back(rows::to_row(record.id, position++, source));
  }
}

void append_schedules(const trigger& record, std::vector<rows::Trigger_Schedule>& to) {
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    to.push_back({{record.id, entry.schedule->id}});
  }
}

void append_update(const trigger& stored, const trigger& now, Trigger_Rows& to) {
  if (stored.name != now.name) {
    to.renamed.push_back(plain(now));
  }
  if (!same_sources(stored.sources, now.sources)) {
    append_sources(stored, to.sources_deleted);
    append_sources(now, to.sources_added);
  }
  if (!same_schedules(stored.schedules, now.schedules)) {
    append_schedules(stored, to.schedules_deleted);
    append_schedules(now, to.schedules_added);
  }
}

void append_trigger(const Trigger_Index::Change& change, Trigger_Rows& to) {
  if (!change.now) {
    to.deleted.push_back(plain(*change.stored));
    append_sources(*change.stored, to.sources_deleted);
    append_schedules(*change.stored, to.schedules_deleted);
  } else if (!change.stored) {
    to.added.push_back(plain(*change.now));
    append_sources(*change.now, to.sources_added);
    append_schedules(*change.now, to.schedules_added);
  } else {
    append_update(*change.stored, *change.now, to);
  }
}

void write_triggers(Row_Writer& writer, const Site_Index::Net_Changes& net) {
  Trigger_Rows rows;
  for (const auto& [id, change] : net.triggers) {
    append_trigger(change, rows);
  }
  writer.erase(net.strays.sources);
  writer.erase(net.strays.schedules);
  writer.erase(rows.sources_deleted);
  writer.erase(rows.schedules_deleted);
  writer.erase(rows.deleted);
  writer.put(rows.renamed);
  writer.insert(rows.added);
  writer.insert(rows.sources_added);
  writer.insert(rows.schedules_added);
}

template <class Row>
std::vector<Row> link_rows(const std::vector<Changes::Link>& links) {
  std::vector<Row> rows;
  rows.reserve(links.size());
  for (const Changes::Link& link : links) {
    rows.push_back({{link.record_id, link.trigger_id}});
  }
  return rows;
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
  // What goes makes room for what takes its place.
  writer.erase(deleted);
  writer.insert(net.added);
  writer.erase(link_rows<Link_Row>(net.links.deleted));
  writer.insert(link_rows<Link_Row>(net.links.added));
}

template <class Item>
void append(const std::vector<Item>& from, std::vector<Item>& to) {
  to.insert(to.end(), from.begin(), from.end());
}

}  // namespace

bool is_empty(const Site_Index::Net_Changes& net) {
  const auto no_links = [](const Changes::Of<Changes::Link>& links) {
    return links.added.empty() && links.deleted.empty();
  };
  return net.triggers.empty() && net.strays.empty() && net.subscriptions.added.empty() &&
         net.subscriptions.deleted.empty() && no_links(net.subscriptions.links) &&
         net.eta_cameras.added.empty() && net.eta_cameras.deleted.empty() &&
         no_links(net.eta_cameras.links);
}

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

void claim_for(odb::database& database, std::uint64_t server_id) {
  rows::Site site;
  database.load(1, site);
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
