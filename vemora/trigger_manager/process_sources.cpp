// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

void Vemora_Trigger_Manager::process_sources_(const Trigger_Details& details) {
  Camera_Selection selection;
  if (!details.config.tags.camera.empty()) {
    selection =
        required(repository_).cameras().get_cameras_matching_tags(details.config.tags.camera);
  }
  process_metadata_event_sources_(details, selection);
  process_eta_camera_sources_(details, selection);
}

void Vemora_Trigger_Manager::process_metadata_event_sources_(const Trigger_Details& details,
                                                             const Camera_Selection& selection) {
  process_onvif_based_subscriptions_(details, selection);
  process_generic_metadata_source_subscriptions_(details);
}

}  // namespace kuv::vemora
