#include "vemora/embedded_server/persistent/index/record_links.h"

#include <algorithm>
#include <iterator>

#include "records-odb.h"
#include "vemora/embedded_server/persistent/index/id_order.h"

namespace kuv::vemora::embedded_server {
namespace {

std::uint64_t id_of(const odb::lazy_shared_ptr<trigger>& link) {
  const trigger* const loaded = link.get();
  return loaded != nullptr ? loaded->id : link.object_id();
}

/// Where the link to that trigger is, or would be.
template <class Links>
auto place_of(Links& links, std::uint64_t trigger_id) {
  return std::lower_bound(
      links.begin(), links.end(), trigger_id,
      [](const auto& link, std::uint64_t wanted) { return id_of(link) < wanted; });
}

/// Takes `triggers` off the notes, and makes what was taken off in memory what was stored of it.
void forget_notes(const std::set<std::uint64_t>& triggers, Trigger_Link_Changes& notes,
                  std::vector<std::uint64_t>& taken_off) {
  const auto goes = [&triggers](std::uint64_t id) { return triggers.count(id) != 0; };
  for (const std::uint64_t id : notes.added) {
    taken_off.erase(std::remove(taken_off.begin(), taken_off.end(), id), taken_off.end());
  }
  std::copy_if(notes.removed.begin(), notes.removed.end(), std::back_inserter(taken_off), goes);
  for (std::vector<std::uint64_t>* const noted : {&notes.added, &notes.removed}) {
    noted->erase(std::remove_if(noted->begin(), noted->end(), goes), noted->end());
  }
}

/// Whether all that is held now was added since, and nothing taken off.
bool held_nothing_before(const Trigger_Link_Changes& notes, std::size_t held_now) {
  return notes.removed.empty() && notes.added.size() == held_now;
}

}  // namespace

std::shared_ptr<trigger> probe(std::uint64_t trigger_id) {
  auto record = std::make_shared<trigger>();
  record->id = trigger_id;
  return record;
}

bool holds(const metadata_event_subscription& record, std::uint64_t trigger_id) {
  const auto& links = record.trigger_links;
  const auto place = place_of(links, trigger_id);
  return place != links.end() && id_of(*place) == trigger_id;
}

bool holds(const eta_camera& record, std::uint64_t trigger_id) {
  return record.triggers.count(probe(trigger_id)) != 0;
}

std::vector<std::uint64_t> held_ids(const metadata_event_subscription& record) {
  return record.trigger_ids();
}

std::vector<std::uint64_t> held_ids(const eta_camera& record) {
  std::vector<std::uint64_t> ids;
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
                     [&](const auto& link) { return trigger_ids.count(id_of(link)) != 0; });
}

bool held_nothing_when_stored(const metadata_event_subscription& record) {
  return held_nothing_before(record.link_changes, record.trigger_links.size());
}

bool held_nothing_when_stored(const eta_camera& record) {
  return held_nothing_before(record.link_changes, record.triggers.size());
}

void set_links(metadata_event_subscription& record, std::vector<std::shared_ptr<trigger>>& held) {
  sort_by(held, [](const std::shared_ptr<trigger>& link) { return link->id; });
  record.trigger_links.assign(held.begin(), held.end());
}

void set_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& held) {
  record.triggers = {held.begin(), held.end()};
}

void replace_link(metadata_event_subscription& record, const std::shared_ptr<trigger>& fresh) {
  if (holds(record, fresh->id)) {
    *place_of(record.trigger_links, fresh->id) = fresh;
  }
}

void replace_link(eta_camera& record, const std::shared_ptr<trigger>& fresh) {
  if (record.triggers.erase(fresh) != 0) {
    record.triggers.insert(fresh);
  }
}

std::vector<std::uint64_t> remove_links(metadata_event_subscription& record,
                                        const std::set<std::uint64_t>& triggers) {
  std::vector<std::uint64_t> removed;
  auto& links = record.trigger_links;
  const auto goes = [&](const odb::lazy_shared_ptr<trigger>& link) {
    const std::uint64_t id = id_of(link);
    const bool wanted = triggers.count(id) != 0;
    if (wanted) {
      removed.push_back(id);
    }
    return wanted;
  };
  links.erase(std::remove_if(links.begin(), links.end(), goes), links.end());
  forget_notes(triggers, record.link_changes, removed);
  return removed;
}

std::vector<std::uint64_t> remove_links(eta_camera& record,
                                        const std::set<std::uint64_t>& triggers) {
  std::vector<std::uint64_t> removed;
  for (auto place = record.triggers.begin(); place != record.triggers.end();) {
    if (triggers.count((*place)->id) != 0) {
      removed.push_back((*place)->id);
      place = record.triggers.erase(place);
    } else {
      ++place;
    }
  }
  forget_notes(triggers, record.link_changes, removed);
  return removed;
}

}  // namespace kuv::vemora::embedded_server
