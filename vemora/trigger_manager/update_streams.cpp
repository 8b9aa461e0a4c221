// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <exception>

#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

void Vemora_Trigger_Manager::update_streams_if_necessary_() {
  for (const std::uint64_t camera_id : cameras_to_reconcile_) {
    try {
      required(capture_manager_).reconcile_metadata_stream(camera_id);
    } catch (const std::exception& error) {
      logger_.log(kuv::logging::severity_level::error,
                  "Failed to reconcile metadata stream for camera {}: {}", camera_id, error.what());
    }
  }
}

}  // namespace kuv::vemora
