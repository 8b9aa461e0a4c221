// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <memory>
#include <set>

#include "vemora/platform/export.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/records/trigger_link_changes.h"

namespace kuv::vemora {

/// The object-detection map of one camera: the triggers that need detection there.
struct eta_camera {
  /// The id of the camera, whether or not it is loaded. The link must be set.
  VEMORA_API std::uint64_t camera_id() const;

  /// Adds a trigger; true when it was not in the map yet. In memory only, until the record is
  /// stored.
  VEMORA_API bool add_trigger(const std::shared_ptr<trigger>& added);

  /// Takes a trigger out; true when it was in the map. In memory only, until the record is stored.
  VEMORA_API bool remove_trigger(const std::shared_ptr<trigger>& removed);

  std::uint64_t id = 0;  ///< given by the repository when the record is added
  odb::lazy_shared_ptr<vemora::camera> camera;  ///< always set
  /// Loaded, never null pointers. Changed through add_trigger and remove_trigger alone.
  std::set<std::shared_ptr<trigger>, ODB_Utils::Record_Comparator> triggers;

  /// Of the persistence library: noted by add_trigger and remove_trigger, cleared by the
  /// repository.
  Trigger_Link_Changes link_changes;
};

}  // namespace kuv::vemora
