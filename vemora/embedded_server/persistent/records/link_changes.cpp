// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/records/link_changes.h"

#include <algorithm>
#include <vector>

namespace kuv::vemora {
namespace {

/// Doubled when it is full, as a note that is appended would.
void make_room(std::vector<std::uint64_t>& noted) {
  if (noted.size() == noted.capacity()) {
    noted.reserve(std::max<std::size_t>(2 * noted.size(), 4));
  }
}

void note(std::vector<std::uint64_t>& noted, std::vector<std::uint64_t>& opposite,
          std::uint64_t trigger_id) {
  const auto undone = std::find(opposite.begin(), opposite.end(), trigger_id);
  if (undone == opposite.end()) {
    noted.push_back(trigger_id);
  } else {
    opposite.erase(undone);
  }
}

}  // namespace

void make_room_for_added(Trigger_Link_Changes& changes) {
  make_room(changes.added);
}

void make_room_for_removed(Trigger_Link_Changes& changes) {
  make_room(changes.removed);
}

void note_added(Trigger_Link_Changes& changes, std::uint64_t trigger_id) noexcept {
  note(changes.added, changes.removed, trigger_id);
}

void note_removed(Trigger_Link_Changes& changes, std::uint64_t trigger_id) noexcept {
  note(changes.removed, changes.added, trigger_id);
}

}  // namespace kuv::vemora
