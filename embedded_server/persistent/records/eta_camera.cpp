#include "vemora/platform/records/eta_camera.h"

#include "embedded_server/persistent/records/link_changes.h"
#include "records-odb.h"

namespace kuv::vemora {

std::uint64_t eta_camera::camera_id() const {
  return camera.object_id();
}

bool eta_camera::add_trigger(const std::shared_ptr<trigger>& added) {
  const bool is_new = triggers.insert(added).second;
  if (is_new) {
    note_added(link_changes, added->id);
  }
  return is_new;
}

bool eta_camera::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const bool was_there = triggers.erase(removed) != 0;
  if (was_there) {
    note_removed(link_changes, removed->id);
  }
  return was_there;
}

}  // namespace kuv::vemora
