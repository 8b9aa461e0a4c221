// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"

namespace kuv::vemora::embedded_server {

// The trigger links of both kinds of record, alike.

/// The ids of the triggers held, ascending.
std::vector<std::uint64_t> held_ids(const metadata_event_subscription& record);
std::vector<std::uint64_t> held_ids(const eta_camera& record);

/// Whether the subscription held at least one of them when it was last handed over. Detection
/// records are never asked for it.
bool held_any_when_stored(const metadata_event_subscription& record,
                          const std::set<std::uint64_t>& trigger_ids);

/// Sets the links of a record as the database holds them.
void set_links(metadata_event_subscription& record, std::vector<std::shared_ptr<trigger>>& held);
void set_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& held);

/// Puts a fresh record of a trigger that is held in the place of the one before.
void replace_link(metadata_event_subscription& record, const std::shared_ptr<trigger>& fresh);
void replace_link(eta_camera& record, const std::shared_ptr<trigger>& fresh);

// Links that are changed by others than the record's holder: what it noted of these triggers is
// forgotten.

void change_links(metadata_event_subscription& record,
                  const std::vector<std::shared_ptr<trigger>>& added,
                  const std::vector<std::uint64_t>& removed);
void change_links(eta_camera& record, const std::vector<std::shared_ptr<trigger>>& added,
                  const std::vector<std::uint64_t>& removed);

/// Takes all of these triggers off at once.
void remove_links(metadata_event_subscription& record, const std::set<std::uint64_t>& triggers);
void remove_links(eta_camera& record, const std::set<std::uint64_t>& triggers);

}  // namespace kuv::vemora::embedded_server
