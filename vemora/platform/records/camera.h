// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

#include "vemora/platform/media/cached_capabilities.h"
#include "vemora/platform/records/capability_document.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora {

/// One camera of the site. The trigger manager reads it and never writes it.
struct camera {
  std::uint64_t id = 0;              ///< identity of the record
  std::string name;                  ///< for people
  Tag_Map tags;                      ///< matched by the camera filters of triggers
  bool object_detection = false;     ///< takes part in object detection
  bool motion_detection = false;     ///< takes part in motion detection
  Capability_Document capabilities;  ///< among much else the ONVIF topics it can send
};

}  // namespace kuv::vemora
