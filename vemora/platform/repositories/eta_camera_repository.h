#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/records/eta_camera.h"

namespace kuv::vemora {

/// The object-detection maps of the cameras, one for a camera at most. Every list comes in
/// ascending order of record id. A bool answer is true when the record is stored and false when the
/// database refused it; every operation may also throw what the persistence library throws.
class VEMORA_API ETA_Camera_Repository {
 public:
  using Record_List = std::vector<std::shared_ptr<eta_camera>>;

  /// What get looks for. With nothing but `trigger` set: every record that holds it.
  struct Get_Params {
    enum class Cameras {
      matching,  ///< of one of `cameras`; an empty list restricts nothing
      outside,   ///< of none of `cameras`; an empty list excludes nothing
    };

    std::shared_ptr<vemora::trigger> trigger;  ///< null: whatever the record holds
    std::vector<std::shared_ptr<camera>> cameras;

    Cameras cameras_match = Cameras::matching;
  };

  virtual ~ETA_Camera_Repository() = default;

  /// The record of that camera; null when there is none.
  virtual std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) = 0;

  /// Stores a new record with its triggers, and gives it an id. Refused when it has no camera, when
  /// its camera has one, and when its camera or one of its triggers is not stored.
  virtual bool add(const std::shared_ptr<eta_camera>& added) = 0;

  /// Stores the triggers that were added to or removed from a record since it was loaded or last
  /// stored. Refused when the record, or a trigger added to it, is not stored.
  virtual bool update(const std::shared_ptr<eta_camera>& changed) = 0;

  /// The records that satisfy everything that `params` ask for.
  virtual Record_List get(const Get_Params& params) = 0;

  /// Every record.
  virtual Record_List get_all() = 0;

  /// Deletes the records that hold no trigger.
  virtual void delete_stale() = 0;
};

}  // namespace kuv::vemora
