#include <algorithm>

#include "vemora/platform/records/record_comparator.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Query = ETA_Camera_Repository::Get_Params;

bool detects_objects(const std::set<Trigger_Source>& sources) {
  return std::any_of(sources.begin(), sources.end(), [](const Trigger_Source& source) {
    return source.type == Trigger_Source_Type::object_detection;
  });
}

bool detects_motion(const std::set<Trigger_Source>& sources) {
  Trigger_Source motion;
  motion.type = Trigger_Source_Type::motion_detection;
  return sources.count(motion) != 0;
}

}  // namespace

void Vemora_Trigger_Manager::process_eta_camera_sources_(const Trigger_Details& details,
                                                         const Camera_Selection& selection) {
  Query query;
  query.trigger = details.trigger;
  if (selection && selection->empty()) {
    remove_trigger_from_eta_camera_records_(details.trigger, repository_->eta_cameras().get(query));
    return;
  }

  const Camera_List candidates = selection.value_or(Camera_List());
  std::set<std::shared_ptr<camera>, ODB_Utils::Record_Comparator> watched;
  if (detects_objects(details.config.sources)) {
    const Camera_List eligible = repository_->cameras().get_object_detection_cameras(candidates);
    watched.insert(eligible.begin(), eligible.end());
  }
  if (detects_motion(details.config.sources)) {
    const Camera_List eligible = repository_->cameras().get_motion_detection_cameras(candidates);
    watched.insert(eligible.begin(), eligible.end());
  }
  for (const std::shared_ptr<camera>& camera_record : watched) {
    add_trigger_to_eta_camera_record_(details.trigger, camera_record);
  }

  query.cameras.assign(watched.begin(), watched.end());
  query.cameras_match = Query::Cameras::outside;
  remove_trigger_from_eta_camera_records_(details.trigger, repository_->eta_cameras().get(query));
}

void Vemora_Trigger_Manager::add_trigger_to_eta_camera_record_(
    const std::shared_ptr<trigger>& record, const std::shared_ptr<camera>& camera_record) {
  auto& eta_cameras = repository_->eta_cameras();
  std::shared_ptr<eta_camera> map = eta_cameras.get_by_camera_id(camera_record->id);
  if (map) {
    if (map->add_trigger(record) && !eta_cameras.update(map)) {
      record_persistence_failure_("Failed to add trigger to ETA camera map", *record, *map);
    }
    return;
  }
  map = std::make_shared<eta_camera>();
  map->camera = camera_record;
  map->add_trigger(record);
  if (!eta_cameras.add(map)) {
    record_persistence_failure_("Failed to create ETA camera map for trigger", *record, *map);
  }
}

/// Stores every record it is given, changed or not: unlike an addition, a removal that was missed
/// once would leave a camera searching for nobody.
void Vemora_Trigger_Manager::remove_trigger_from_eta_camera_records_(
    const std::shared_ptr<trigger>& record, const ETA_Camera_List& camera_records) {
  for (const std::shared_ptr<eta_camera>& map : camera_records) {
    map->remove_trigger(record);
    if (!repository_->eta_cameras().update(map)) {
      record_persistence_failure_("Failed to remove trigger from object detection map", *record,
                                  *map);
    }
  }
}

}  // namespace kuv::vemora
