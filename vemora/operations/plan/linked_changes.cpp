// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/plan/linked_changes.h"

#include <set>

namespace kuv::vemora::operations {
namespace {

using embedded_server::Changes;
using Ids = std::set<std::uint64_t>;

struct Moved_Links {
  Ids added;
  Ids deleted;
};

std::map<std::uint64_t, Moved_Links> by_record(const Changes::Of<std::uint64_t>& records,
                                               const Changes::Of<Changes::Link>& links) {
  std::map<std::uint64_t, Moved_Links> moved;
  for (const Changes::Link& link : links.added) {
    moved[link.record_id].added.insert(link.trigger_id);
  }
  for (const Changes::Link& link : links.deleted) {
    moved[link.record_id].deleted.insert(link.trigger_id);
  }
  for (const auto* const ids : {&records.added, &records.deleted}) {
    for (const std::uint64_t id : *ids) {
      moved[id];
    }
  }
  return moved;
}

/// A link whose trigger is gone is a row all the same, and a pass deletes it.
Ids stored_links(const Planned_Ids& live, const Moved_Links& moved) {
  Ids stored(live.begin(), live.end());
  stored.insert(moved.deleted.begin(), moved.deleted.end());
  return stored;
}

Ids links_afterwards(Ids links, const Moved_Links& moved) {
  for (const std::uint64_t id : moved.deleted) {
    links.erase(id);
  }
  links.insert(moved.added.begin(), moved.added.end());
  return links;
}

Planned_Ids list_of(const Ids& ids) {
  return {ids.begin(), ids.end()};
}

}  // namespace

std::vector<Linked_Change> linked_changes(const std::map<std::uint64_t, Planned_Ids>& before,
                                          const Changes::Of<std::uint64_t>& records,
                                          const Changes::Of<Changes::Link>& links) {
  const Ids created(records.added.begin(), records.added.end());
  const Ids deleted(records.deleted.begin(), records.deleted.end());
  std::vector<Linked_Change> changes;
  for (const auto& [id, moved] : by_record(records, links)) {
    const auto found = before.find(id);
    if (found == before.end()) {
      if (created.count(id) != 0) {  // otherwise it is a link that was left behind by its record
        changes.push_back({id, Planned_Action::creation, {std::nullopt, list_of(moved.added)}});
      }
      continue;
    }
    const Ids stored = stored_links(found->second, moved);
    if (deleted.count(id) != 0) {
      changes.push_back({id, Planned_Action::deletion, {list_of(stored), std::nullopt}});
    } else {
      changes.push_back({id,
                         Planned_Action::change,
                         {list_of(stored), list_of(links_afterwards(stored, moved))}});
    }
  }
  return changes;
}

}  // namespace kuv::vemora::operations
