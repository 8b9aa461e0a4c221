// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <algorithm>

#include "vemora/platform/records/record_comparator.h"
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using ETA_Camera_Query = ETA_Camera_Repository::Get_Params;
using Camera_Set = std::set<std::shared_ptr<camera>, ODB_Utils::Record_Comparator>;

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

/// The cameras that the sources watch, among the candidates; with no candidates, among all.
Camera_Set watched_cameras(const std::set<Trigger_Source>& sources, Repository& repository,
                           const std::vector<std::shared_ptr<camera>>& candidates) {
  Camera_Set watched;
  if (detects_objects(sources)) {
    const auto eligible = repository.cameras().get_object_detection_cameras(candidates);
    watched.insert(eligible.begin(), eligible.end());
  }
  if (detects_motion(sources)) {
    const auto eligible = repository.cameras().get_motion_detection_cameras(candidates);
    watched.insert(eligible.begin(), eligible.end());
  }
  return watched;
}

}  // namespace

void Vemora_Trigger_Manager::process_eta_camera_sources_(const Trigger_Details& details,
                                                         const Camera_Selection& selection) {
  ETA_Camera_Query query;
  query.trigger = details.trigger;
  if (selection && selection->empty()) {
    remove_trigger_from_eta_camera_records_(details.trigger,
                                            required(repository_).eta_cameras().get(query));
    return;
  }

  const Camera_Set watched = watched_cameras(details.config.sources, required(repository_),
                                             selection.value_or(Camera_List()));
  for (const std::shared_ptr<camera>& camera_record : watched) {
    add_trigger_to_eta_camera_record_(details.trigger, camera_record);
  }

  query.cameras.assign(watched.begin(), watched.end());
  query.cameras_match = ETA_Camera_Query::Cameras::outside;
  remove_trigger_from_eta_camera_records_(details.trigger,
                                          required(repository_).eta_cameras().get(query));
}

void Vemora_Trigger_Manager::add_trigger_to_eta_camera_record_(
    const std::shared_ptr<trigger>& trigger_record, const std::shared_ptr<camera>& camera_record) {
  auto& eta_cameras = required(repository_).eta_cameras();
  std::shared_ptr<eta_camera> detection_map = eta_cameras.get_by_camera_id(camera_record->id);
  if (detection_map) {
    if (detection_map->add_trigger(trigger_record) && !eta_cameras.update(detection_map)) {
      record_persistence_failure_("Failed to add trigger to ETA camera map", *trigger_record,
                                  *detection_map);
    }
    return;
  }
  detection_map = std::make_shared<eta_camera>();
  detection_map->camera = camera_record;
  detection_map->add_trigger(trigger_record);
  if (!eta_cameras.add(detection_map)) {
    record_persistence_failure_("Failed to create ETA camera map for trigger", *trigger_record,
                                *detection_map);
  }
}

/// Stores every record it is given, changed or not: unlike an addition, a removal that was missed
/// once would leave a camera searching for nobody.
void Vemora_Trigger_Manager::remove_trigger_from_eta_camera_records_(
    const std::shared_ptr<trigger>& trigger_record, const ETA_Camera_List& detection_maps) {
  for (const std::shared_ptr<eta_camera>& detection_map : detection_maps) {
    detection_map->remove_trigger(trigger_record);
    if (!required(repository_).eta_cameras().update(detection_map)) {
      record_persistence_failure_("Failed to remove trigger from object detection map",
                                  *trigger_record, *detection_map);
    }
  }
}

}  // namespace kuv::vemora
