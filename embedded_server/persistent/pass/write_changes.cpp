#include "embedded_server/persistent/pass/write_changes.h"

#include <odb/database.hxx>

#include "embedded_server/persistent/index/trigger_values.h"
#include "embedded_server/persistent/mapping/source_row.h"
#include "records-odb.h"
#include "rows-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

void insert_sources(odb::database& database, const trigger& record) {
  std::uint32_t position = 0;
  for (const Trigger_Source& source : record.sources) {
    database.persist(rows::to_row(record.id, position++, source));
  }
}

void erase_sources(odb::database& database, const trigger& record) {
  for (std::uint32_t position = 0; position < record.sources.size(); ++position) {
    database.erase<rows::Trigger_Source_Row>(rows::Source_Key{record.id, position});
  }
}

void insert_schedules(odb::database& database, const trigger& record) {
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    database.persist(rows::Trigger_Schedule{{record.id, entry.schedule->id}});
  }
}

void erase_schedules(odb::database& database, const trigger& record) {
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    database.erase<rows::Trigger_Schedule>(rows::Link{record.id, entry.schedule->id});
  }
}

void update_trigger(odb::database& database, const trigger& stored, const trigger& now) {
  if (stored.name != now.name) {
    database.update(now);
  }
  if (!same_sources(stored.sources, now.sources)) {
    erase_sources(database, stored);
    insert_sources(database, now);
  }
  if (!same_schedules(stored.schedules, now.schedules)) {
    erase_schedules(database, stored);
    insert_schedules(database, now);
  }
}

void write_trigger(odb::database& database, const Trigger_Index::Change& change) {
  if (!change.now) {
    erase_sources(database, *change.stored);
    erase_schedules(database, *change.stored);
    database.erase<trigger>(change.stored->id);
  } else if (!change.stored) {
    database.persist(*change.now);
    insert_sources(database, *change.now);
    insert_schedules(database, *change.now);
  } else {
    update_trigger(database, *change.stored, *change.now);
  }
}

template <class Row>
void erase_all(odb::database& database, const std::vector<std::uint64_t>& ids) {
  for (const std::uint64_t id : ids) {
    database.erase<Row>(id);
  }
}

template <class Row>
void persist_all(odb::database& database, const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    database.persist(row);
  }
}

template <class Row>
void write_links(odb::database& database, const Changes::Of<Changes::Link>& links) {
  for (const Changes::Link& link : links.deleted) {
    database.erase<Row>(rows::Link{link.record_id, link.trigger_id});
  }
  Row row;
  for (const Changes::Link& link : links.added) {
    row.key = {link.record_id, link.trigger_id};
    database.persist(const_cast<const Row&>(row));
  }
}

void note_pending(odb::database& database, const std::set<std::uint64_t>& camera_ids) {
  for (const std::uint64_t camera_id : camera_ids) {
    rows::Pending_Camera row;
    if (!database.find(camera_id, row)) {
      row.camera_id = camera_id;
      database.persist(row);
    }
  }
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
  return net.triggers.empty() && net.subscriptions.added.empty() &&
         net.subscriptions.deleted.empty() && no_links(net.subscriptions.links) &&
         net.eta_cameras.added.empty() && net.eta_cameras.deleted.empty() &&
         no_links(net.eta_cameras.links);
}

void write_changes(odb::database& database, const Site_Index::Net_Changes& net) {
  for (const auto& [id, change] : net.triggers) {
    write_trigger(database, change);
  }
  // A subscription that goes makes room for one of the same camera and topic.
  erase_all<rows::Subscription>(database, net.subscriptions.deleted);
  persist_all(database, net.subscriptions.added);
  write_links<rows::Subscription_Trigger>(database, net.subscriptions.links);
  erase_all<rows::ETA_Camera>(database, net.eta_cameras.deleted);
  persist_all(database, net.eta_cameras.added);
  write_links<rows::ETA_Camera_Trigger>(database, net.eta_cameras.links);
  note_pending(database, net.subscriptions.cameras);
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
