// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

namespace kuv::vemora {

/// What kind of event a trigger source listens to. The values are stored and are part of the ABI.
enum class Trigger_Source_Type : std::int32_t {
  onvif_metadata = 0,    ///< one ONVIF metadata topic
  metadata_event = 1,    ///< generic metadata events, selected by the trigger's tag filter
  object_detection = 2,  ///< objects of one type in view
  external = 3,          ///< fired from outside; the parser accepts it and drops it
  motion_detection = 4,  ///< motion in view
  audio_detection = 5,   ///< sounds
};

}  // namespace kuv::vemora
