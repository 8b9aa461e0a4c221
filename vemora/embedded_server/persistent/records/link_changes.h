// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "vemora/platform/records/trigger_link_changes.h"

namespace kuv::vemora {

// A link comes or goes after room was made for its note: whatever fails before that has changed
// nothing, and nothing fails after it.

void make_room_for_added(Trigger_Link_Changes& changes);
void make_room_for_removed(Trigger_Link_Changes& changes);

/// Notes that a link was added; one that was removed before is back as it was stored.
void note_added(Trigger_Link_Changes& changes, std::uint64_t trigger_id) noexcept;

/// Notes that a link was removed; one that was added before was never stored.
void note_removed(Trigger_Link_Changes& changes, std::uint64_t trigger_id) noexcept;

}  // namespace kuv::vemora
