// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "vemora/platform/export.h"

namespace kuv::vemora::capture {

/// The side of the server that talks to the cameras. Shared with the trigger manager for as long as
/// that lives; must not call it back.
class VEMORA_API Manager {
 public:
  virtual ~Manager() = default;

  /// Brings the metadata stream of one camera in line with the subscriptions stored for it. A
  /// camera whose last subscription went must send no events any more, rather than all of them.
  /// Called on the thread of the pass, after its last write, in ascending order of camera id; may
  /// throw, which is logged and costs only that camera.
  virtual void reconcile_metadata_stream(std::uint64_t camera_id) = 0;
};

}  // namespace kuv::vemora::capture
