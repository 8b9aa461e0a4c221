// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/records/eta_camera.h"

#include "records-odb.h"
#include "vemora/embedded_server/persistent/records/link_changes.h"

namespace kuv::vemora {

std::uint64_t eta_camera::camera_id() const {
  return camera.object_id();
}

bool eta_camera::add_trigger(const std::shared_ptr<trigger>& added) {
  const auto next = triggers.lower_bound(added);
  if (next != triggers.end() && (*next)->id == added->id) {
    return false;
  }
  make_room_for_added(link_changes);
  triggers.insert(next, added);
  note_added(link_changes, added->id);
  return true;
}

bool eta_camera::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const auto held = triggers.find(removed);
  if (held == triggers.end()) {
    return false;
  }
  make_room_for_removed(link_changes);
  triggers.erase(held);
  note_removed(link_changes, removed->id);
  return true;
}

}  // namespace kuv::vemora
