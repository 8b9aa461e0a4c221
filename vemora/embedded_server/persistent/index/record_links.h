#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"

namespace kuv::vemora::embedded_server {

// The trigger links of both kinds of record, alike.

/// A trigger that is good for nothing but finding one by its id.
std::shared_ptr<trigger> probe(std::uint64_t trigger_id);

bool holds(const metadata_event_subscription& record, std::uint64_t trigger_id);
bool holds(const eta_camera& record, std::uint64_t trigger_id);

/// Whether the record held the trigger when it was last handed over.
template <class Record>
bool held_when_stored(const Record& record, std::uint64_t trigger_id) {
  const auto in = [trigger_id](const std::vector<std::uint64_t>& ids) {
    return std::find(ids.begin(), ids.end(), trigger_id) != ids.end();
  };
  return in(record.link_changes.removed) ||
         (holds(record, trigger_id) && !in(record.link_changes.added));
}

std::vector<std::uint64_t> held_ids(const metadata_event_subscription& record);
std::vector<std::uint64_t> held_ids(const eta_camera& record);

/// Whether the subscription held at least one of them when it was last handed over.
bool held_any_when_stored(const metadata_event_subscription& record,
                          const std::set<std::uint64_t>& trigger_ids);

/// Whether the record held no trigger when it was last handed over.
bool held_nothing_when_stored(const metadata_event_subscription& record);
bool held_nothing_when_stored(const eta_camera& record);

/// Sets the links of a record as the database holds them.
void set_links(metadata_event_subscription& record, std::vector<std::shared_ptr<trigger>>& held);
void set_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& held);

/// Puts a fresh record of a trigger that is held in the place of the one before.
void replace_link(metadata_event_subscription& record, const std::shared_ptr<trigger>& fresh);
void replace_link(eta_camera& record, const std::shared_ptr<trigger>& fresh);

/// Takes all of these triggers off at once, and off the notes in the record; answers those it held
/// when it was last handed over.
std::vector<std::uint64_t> remove_links(metadata_event_subscription& record,
                                        const std::set<std::uint64_t>& triggers);
std::vector<std::uint64_t> remove_links(eta_camera& record,
                                        const std::set<std::uint64_t>& triggers);

}  // namespace kuv::vemora::embedded_server
