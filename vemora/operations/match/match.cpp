// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/match.h"

#include "vemora/operations/match/listeners.h"
#include "vemora/operations/match/near_misses.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {
namespace {

bool is_known(const Site_View& site, const Event& event) {
  const std::uint64_t id = event.place;
  return event.kind == Event::Kind::subscription
             ? site.stored().generic.count(id) != 0
             : site.cameras().count(id) + site.stored().topics.count(id) +
                       site.stored().detection.count(id) !=
                   0;
}

}  // namespace

Match match(const std::shared_ptr<embedded_server::Database>& database, std::uint64_t server_id,
            const Event& event) {
  const Site_View site(database, server_id);
  const Listeners::Ids told = Listeners(site.stored(), site.resolver()).told_of(event);
  Match match;
  match.is_known = is_known(site, event);
  for (const std::uint64_t id : told) {
    const auto record = site.stored().triggers.find(id);
    match.triggers.push_back(
        {id, record == site.stored().triggers.end() ? std::string() : record->second.name});
  }
  match.near_misses = near_misses(site, event, told);
  match.unexpected = reason_not_to_expect(site, event);
  return match;
}

}  // namespace kuv::vemora::operations
