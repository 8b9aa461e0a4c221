// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/operations/match/event_sorts.h"
#include "vemora/operations/match/match.h"

namespace kuv::vemora::operations {

Event_Counts count_events(const std::shared_ptr<embedded_server::Database>& database,
                          std::uint64_t server_id, const Event_Source& next) {
  Site_Records records;
  embedded_server::Inventory_Meta_Type_Resolver resolver;
  {
    // Over before the events are read, which may take as long as somebody types them.
    const embedded_server::Pass_Scope scope(database, server_id,
                                            embedded_server::Pass_Scope::Mode::read_only);
    resolver.learn(load_object_types(database));
    records = read_site_records(database);
  }
  const Listeners listeners(records, resolver);
  Event_Sorts sorts({&listeners});
  Event_Counts counts;
  while (const std::optional<Event> event = next()) {
    ++counts.events;
    counts.unheard += sorts.count(*event) ? 0 : 1;
  }
  add_counts(sorts, listeners, counts);
  return counts;
}

void add_counts(const Event_Sorts& sorts, const Listeners& listeners, Event_Counts& counts) {
  sorts.for_each([&](const Event& event, std::uint64_t count) {
    const Listeners::Ids told = listeners.told_of(event);
    counts.unheard += told.empty() ? count : 0;
    for (const std::uint64_t id : told) {
      counts.triggers[id] += count;
    }
  });
}

}  // namespace kuv::vemora::operations
