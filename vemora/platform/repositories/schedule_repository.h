// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>

#include "vemora/platform/export.h"
#include "vemora/platform/records/schedule.h"

namespace kuv::vemora {

/// The schedules of the site. Called while the documents are parsed: an exception fails the
/// operation of the trigger manager, and nothing was written.
class VEMORA_API Schedule_Repository {
 public:
  virtual ~Schedule_Repository() = default;

  /// The schedule of that id, usable or not; null when there is none. The record is kept in the
  /// triggers that are stored with it.
  virtual std::shared_ptr<schedule> get_by_id(std::uint64_t id) = 0;
};

}  // namespace kuv::vemora
