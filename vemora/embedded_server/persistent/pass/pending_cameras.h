// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>

namespace kuv::vemora::embedded_server {

class Engine;

// The cameras whose subscriptions were added, deleted, or updated with other triggers, and whose
// streams have not been reconciled since, in the transaction at hand.

std::set<std::uint64_t> load_pending(Engine& engine);

/// Whether one of these cameras is among them.
bool are_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids);

void note_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids);

/// Notes that these cameras were reconciled.
void strike_out_pending(Engine& engine, const std::set<std::uint64_t>& camera_ids);

}  // namespace kuv::vemora::embedded_server
