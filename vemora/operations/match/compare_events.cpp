// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "vemora/operations/match/event_sorts.h"
#include "vemora/operations/match/match.h"
#include "vemora/operations/match/near_misses.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {
namespace {

/// The rows of one direction: what a trigger is told of at one place, with one of the events.
class Listening_Changes {
 public:
  void add(const Listeners::Ids& triggers, const Listeners::Ids& others, const Event& event,
           std::uint64_t count) {
    Listeners::Ids changed;
    std::set_difference(triggers.begin(), triggers.end(), others.begin(), others.end(),
                        std::back_inserter(changed));
    for (const std::uint64_t trigger_id : changed) {
      const bool of_camera = event.kind != Event::Kind::subscription;
      Row& row = rows_[{trigger_id, {!of_camera, event.place}}];
      row.event = row.events == 0 ? event : row.event;
      row.events += count;
    }
  }

  bool empty() const { return rows_.empty(); }

  /// With the reasons why, in that site, nobody is told after a refresh.
  std::vector<Changed_Listening> explained_by(const Site_View& site) const {
    const Listeners after_refresh(site.refreshed(), site.resolver());
    std::vector<Changed_Listening> list;
    list.reserve(rows_.size());
    std::optional<Why_Not> why_not;
    for (const auto& [key, row] : rows_) {
      const auto& [trigger_id, place] = key;
      const auto& [is_subscription, place_id] = place;
      if (!why_not || why_not->trigger_id() != trigger_id) {
        why_not.emplace(site, after_refresh, trigger_id);
      }
      const auto id = std::make_optional(place_id);
      list.push_back({trigger_id, is_subscription ? std::nullopt : id,
                      is_subscription ? id : std::nullopt, row.events,
                      why_not->told_of(row.event)});
    }
    return list;
  }

 private:
  struct Row {
    Event event;
    std::uint64_t events = 0;
  };

  /// By trigger, and cameras before subscriptions.
  std::map<std::pair<std::uint64_t, std::pair<bool, std::uint64_t>>, Row> rows_;
};

}  // namespace

Compared_Counts compare_events(const std::shared_ptr<embedded_server::Database>& database,
                               std::uint64_t server_id,
                               const embedded_server::Json_Document& config,
                               const embedded_server::Json_Document* mapping,
                               const Event_Source& next) {
  Compared_Counts compared;
  Listening_Changes gained;
  Listening_Changes lost;
  Site_View site(database, server_id, &config, mapping);
  {
    const Listeners before(site.stored(), site.resolver());
    const Listeners after(site.refreshed(), site.resolver());
    Event_Sorts sorts({&before, &after});
    while (const std::optional<Event> event = next()) {
      ++compared.counts.events;
      compared.counts.unheard += sorts.count(*event) ? 0 : 1;
    }
    add_counts(sorts, before, compared.counts);
    sorts.for_each([&](const Event& event, std::uint64_t count) {
      const Listeners::Ids told_before = before.told_of(event);
      const Listeners::Ids told_after = after.told_of(event);
      gained.add(told_after, told_before, event, count);
      lost.add(told_before, told_after, event, count);
    });
  }
  compared.lost = lost.explained_by(site);
  if (!gained.empty()) {
    // The same state, not one that is read anew: another process may have written meanwhile.
    site.turn_to_stored_documents();
    compared.gained = gained.explained_by(site);
  }
  return compared;
}

}  // namespace kuv::vemora::operations
