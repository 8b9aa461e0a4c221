#include "vemora/platform/records/metadata_event_subscription.h"

#include <algorithm>

#include "records-odb.h"
#include "vemora/embedded_server/persistent/records/link_changes.h"

namespace kuv::vemora {
namespace {

using Trigger_Links = std::vector<odb::lazy_shared_ptr<trigger>>;

std::uint64_t id_of(const odb::lazy_shared_ptr<trigger>& link) {
  const trigger* const loaded = link.get();
  return loaded != nullptr ? loaded->id : link.object_id();
}

/// Where the link to that trigger is, or would be. Triggers mostly join in the order of their ids.
template <class Links>
auto place_of(Links& links, std::uint64_t trigger_id) {
  if (links.empty() || id_of(links.back()) < trigger_id) {
    return links.end();
  }
  return std::lower_bound(links.begin(), links.end(), trigger_id,
                          [](const odb::lazy_shared_ptr<trigger>& link, std::uint64_t wanted) {
                            return id_of(link) < wanted;
                          });
}

}  // namespace

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
  const auto place = place_of(trigger_links, added->id);
  if (place != trigger_links.end() && id_of(*place) == added->id) {
    return false;
  }
  make_room_for_added(link_changes);
  trigger_links.emplace(place, added);
  note_added(link_changes, added->id);
  return true;
}

bool metadata_event_subscription::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const auto place = place_of(trigger_links, removed->id);
  if (place == trigger_links.end() || id_of(*place) != removed->id) {
    return false;
  }
  make_room_for_removed(link_changes);
  trigger_links.erase(place);
  note_removed(link_changes, removed->id);
  return true;
}

}  // namespace kuv::vemora
