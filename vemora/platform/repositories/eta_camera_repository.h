// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/records/eta_camera.h"

namespace kuv::vemora {

/// The object-detection maps of the cameras, one for a camera at most. Every list comes in
/// ascending order of record id, without null pointers. Every record that is answered has a camera,
/// and its triggers are loaded, with their sources as they are stored now.
///
/// A bool answer is true when the record is stored and false when the database refused it; queries
/// answer what is stored from then on. A refusal costs the trigger this one record or change, and
/// is reported. What an exception costs depends on the operation, see Repository.
class VEMORA_API ETA_Camera_Repository {
 public:
  /// No pointer in it is null.
  using Record_List = std::vector<std::shared_ptr<eta_camera>>;

  /// What get looks for. With nothing but `trigger` set: every record that holds it.
  struct Get_Params {
    /// How `cameras` are meant.
    enum class Cameras {
      matching,  ///< of one of `cameras`; an empty list restricts nothing
      outside,   ///< of none of `cameras`; an empty list excludes nothing
    };

    std::shared_ptr<vemora::trigger> trigger;      ///< null: whatever the record holds
    std::vector<std::shared_ptr<camera>> cameras;  ///< no null pointers

    Cameras cameras_match = Cameras::matching;  ///< how `cameras` are meant
  };

  virtual ~ETA_Camera_Repository() = default;

  /// The record of that camera; null when there is none.
  virtual std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) = 0;

  /// Stores a new record with its triggers, gives it an id and clears its link_changes. The
  /// repository may keep the object. Refused when it has no camera, when its camera has one, and
  /// when its camera or one of its triggers is not stored.
  virtual bool add(const std::shared_ptr<eta_camera>& added) = 0;

  /// Stores the triggers that were added to or removed from a record since it was loaded or last
  /// stored, and clears its link_changes. Also called for records that have not changed. Refused
  /// when the record, or a trigger added to it, is not stored.
  virtual bool update(const std::shared_ptr<eta_camera>& changed) = 0;

  /// The records that satisfy everything that `params` ask for.
  virtual Record_List get(const Get_Params& params) = 0;

  /// Every record: what the notification pusher is told is made from them, after the last write. An
  /// exception fails the pass.
  virtual Record_List get_all() = 0;

  /// Deletes the records that hold no trigger, those included that lost their last one when it was
  /// deleted. The last write of a pass: a server commits here, before the capture manager and the
  /// pusher are called. An exception fails the pass, and neither of them is called.
  virtual void delete_stale() = 0;
};

}  // namespace kuv::vemora
