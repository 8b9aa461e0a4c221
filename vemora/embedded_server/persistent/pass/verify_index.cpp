// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/verify_index.h"

#include <fmt/format.h>

#include <odb/database.hxx>
#include <odb/transaction.hxx>
#include <stdexcept>

#include "vemora/embedded_server/persistent/index/record_links.h"
#include "vemora/trigger_parser/strict_equality.h"

namespace kuv::vemora::embedded_server {
namespace {

void require_same(bool same, const char* what, std::uint64_t id) {
  if (!same) {
    throw std::logic_error(
        fmt::format("the index of the pass and the database differ: {} {}", what, id));
  }
}

/// The links of a record, but for those that were changed in memory and never handed over.
template <class Record>
std::set<std::uint64_t> ids_when_stored(const Record& record) {
  const std::vector<std::uint64_t> held = held_ids(record);
  std::set<std::uint64_t> ids(held.begin(), held.end());
  for (const std::uint64_t trigger_id : record.link_changes.added) {
    ids.erase(trigger_id);
  }
  ids.insert(record.link_changes.removed.begin(), record.link_changes.removed.end());
  return ids;
}

template <class Records>
void compare_links(const char* what, const Records& seen, const Records& stored) {
  require_same(seen.size() == stored.size(), what, seen.size());
  for (std::size_t index = 0; index < seen.size(); ++index) {
    require_same(seen[index]->id == stored[index]->id, what, seen[index]->id);
    require_same(ids_when_stored(*seen[index]) == ids_when_stored(*stored[index]), what,
                 seen[index]->id);
  }
}

void compare_triggers(const std::vector<std::shared_ptr<const trigger>>& seen,
                      const std::vector<std::shared_ptr<const trigger>>& stored) {
  require_same(seen.size() == stored.size(), "triggers", seen.size());
  for (std::size_t index = 0; index < seen.size(); ++index) {
    const trigger& left = *seen[index];
    const trigger& right = *stored[index];
    require_same(strict_equality::same(left, right), "trigger", left.id);
  }
}

}  // namespace

void verify_index(Engine::Session& session, odb::database& database, Site_Index& seen) {
  odb::transaction transaction(session.begin());
  Site_Index stored(database, nullptr);
  compare_triggers(seen.triggers().all_accepted(), stored.triggers().all_accepted());
  compare_links("subscription", seen.subscriptions().all(), stored.subscriptions().all());
  compare_links("detection record", seen.eta_cameras().all(), stored.eta_cameras().all());
  transaction.commit();
}

}  // namespace kuv::vemora::embedded_server
