// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/record_links.h"

#include <algorithm>

#include "vemora/embedded_server/persistent/index/id_order.h"
#include "vemora/embedded_server/persistent/records/trigger_links.h"

namespace kuv::vemora::embedded_server {
namespace {

using Ids = std::vector<std::uint64_t>;

bool is_in(const Ids& ids, std::uint64_t wanted) {
  return std::find(ids.begin(), ids.end(), wanted) != ids.end();
}

bool held_when_stored(const metadata_event_subscription& record, std::uint64_t trigger_id) {
  return is_in(record.link_changes.removed, trigger_id) ||
         (holds(record.trigger_links, trigger_id) && !is_in(record.link_changes.added, trigger_id));
}

template <class Is_Concerned>
void forget_notes(Trigger_Link_Changes& notes, Is_Concerned is_concerned) {
  for (Ids* const noted : {&notes.added, &notes.removed}) {
    noted->erase(std::remove_if(noted->begin(), noted->end(), is_concerned), noted->end());
  }
}

template <class Links>
void change(Links& links, Trigger_Link_Changes& notes,
            const std::vector<std::shared_ptr<trigger>>& added, const Ids& removed) {
  Ids changed = removed;
  for (const std::shared_ptr<trigger>& record : added) {
    add_link(links, record);
    changed.push_back(record->id);
  }
  for (const std::uint64_t trigger_id : removed) {
    remove_link(links, trigger_id);
  }
  forget_notes(notes, [&changed](std::uint64_t id) { return is_in(changed, id); });
}

}  // namespace

Ids held_ids(const metadata_event_subscription& record) {
  return record.trigger_ids();
}

Ids held_ids(const eta_camera& record) {
  Ids ids;
  ids.reserve(record.triggers.size());
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.push_back(held->id);
  }
  return ids;
}

bool held_any_when_stored(const metadata_event_subscription& record,
                          const std::set<std::uint64_t>& trigger_ids) {
  const Trigger_Link_Changes& changes = record.link_changes;
  if (!changes.added.empty() || !changes.removed.empty()) {
    return std::any_of(trigger_ids.begin(), trigger_ids.end(),
                       [&](std::uint64_t id) { return held_when_stored(record, id); });
  }
  return std::any_of(record.trigger_links.begin(), record.trigger_links.end(),
                     [&](const Trigger_Link& link) { return trigger_ids.count(id_of(link)) != 0; });
}

void set_links(metadata_event_subscription& record, std::vector<std::shared_ptr<trigger>>& held) {
  sort_by(held, [](const std::shared_ptr<trigger>& link) { return link->id; });
  record.trigger_links.assign(held.begin(), held.end());
}

void set_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& held) {
  record.triggers = {held.begin(), held.end()};
}

void replace_link(metadata_event_subscription& record, const std::shared_ptr<trigger>& fresh) {
  const Found_Link found = find_link(record.trigger_links, fresh->id);
  if (found.is_there) {
    *found.position = fresh;
  }
}

void replace_link(eta_camera& record, const std::shared_ptr<trigger>& fresh) {
  if (record.triggers.erase(fresh) != 0) {
    record.triggers.insert(fresh);
  }
}

void change_links(metadata_event_subscription& record,
                  const std::vector<std::shared_ptr<trigger>>& added, const Ids& removed) {
  change(record.trigger_links, record.link_changes, added, removed);
}

void change_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& added,
                  const Ids& removed) {
  change(record.triggers, record.link_changes, added, removed);
}

void remove_links(metadata_event_subscription& record, const std::set<std::uint64_t>& triggers) {
  const auto is_concerned = [&triggers](std::uint64_t id) { return triggers.count(id) != 0; };
  Trigger_Link_List& links = record.trigger_links;
  links.erase(std::remove_if(links.begin(), links.end(),
                             [&](const Trigger_Link& link) { return is_concerned(id_of(link)); }),
              links.end());
  forget_notes(record.link_changes, is_concerned);
}

void remove_links(eta_camera& record, const std::set<std::uint64_t>& triggers) {
  const auto is_concerned = [&triggers](std::uint64_t id) { return triggers.count(id) != 0; };
  for (auto next = record.triggers.begin(); next != record.triggers.end();) {
    const auto held = next++;
    if (is_concerned((*held)->id)) {
      record.triggers.erase(held);
    }
  }
  forget_notes(record.link_changes, is_concerned);
}

}  // namespace kuv::vemora::embedded_server
