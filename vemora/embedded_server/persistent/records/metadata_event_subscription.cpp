// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/records/metadata_event_subscription.h"

#include <algorithm>

#include "records-odb.h"
#include "vemora/embedded_server/persistent/records/link_changes.h"
#include "vemora/embedded_server/persistent/records/trigger_links.h"

namespace kuv::vemora {

std::uint64_t metadata_event_subscription::camera_id() const {
  return camera.object_id();
}

std::vector<std::uint64_t> metadata_event_subscription::trigger_ids() const {
  std::vector<std::uint64_t> ids;
  ids.reserve(trigger_links.size());
  std::transform(trigger_links.begin(), trigger_links.end(), std::back_inserter(ids), id_of);
  return ids;
}

bool metadata_event_subscription::add_trigger(const std::shared_ptr<trigger>& added) {
  const Found_Link found = find_link(trigger_links, added->id);
  if (found.is_there) {
    return false;
  }
  make_room_for_added(link_changes);
  trigger_links.emplace(found.position, added);
  note_added(link_changes, added->id);
  return true;
}

bool metadata_event_subscription::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const Found_Link found = find_link(trigger_links, removed->id);
  if (!found.is_there) {
    return false;
  }
  make_room_for_removed(link_changes);
  trigger_links.erase(found.position);
  note_removed(link_changes, removed->id);
  return true;
}

}  // namespace kuv::vemora
