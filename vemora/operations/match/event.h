// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

namespace kuv::vemora::operations {

/// Something that a camera or a generic subscription reports.
struct Event {
  /// What is reported.
  enum class Kind {
    topic,         ///< `text` is the topic
    object,        ///< `text` is the type of the object
    motion,        ///< of whatever
    subscription,  ///< of a generic subscription
  };

  Kind kind = Kind::topic;
  std::uint64_t place = 0;  ///< the camera's id, or the subscription's
  std::string text;
  bool in_motion = false;  ///< the object is
};

}  // namespace kuv::vemora::operations
