#pragma once

#include <cstdint>
#include <memory>

#include "vemora/platform/export.h"
#include "vemora/platform/records/schedule.h"

namespace kuv::vemora {

/// The schedules of the site. Every operation may throw what the persistence library throws.
class VEMORA_API Schedule_Repository {
 public:
  virtual ~Schedule_Repository() = default;

  /// The schedule of that id, usable or not; null when there is none.
  virtual std::shared_ptr<schedule> get_by_id(std::uint64_t id) = 0;
};

}  // namespace kuv::vemora
