// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/event_sorts.h"

#include <algorithm>

namespace kuv::vemora::operations {

bool Event_Sorts::count(const Event& event) {
  if (std::none_of(listeners_.begin(), listeners_.end(),
                   [&event](const Listeners* some) { return some->may_be_told_of(event); })) {
    return false;
  }
  switch (event.kind) {
    case Event::Kind::topic:
      ++topics_[event.place][event.text];
      break;
    case Event::Kind::object:
      ++objects_[event.place][event.text].at(event.in_motion ? 1 : 0);
      break;
    case Event::Kind::motion:
      ++motion_[event.place];
      break;
    case Event::Kind::subscription:
      ++generic_[event.place];
      break;
  }
  return true;
}

void Event_Sorts::for_each(const std::function<void(const Event&, std::uint64_t)>& take) const {
  for (const auto& [camera_id, topics] : topics_) {
    for (const auto& [topic, count] : topics) {
      take({Event::Kind::topic, camera_id, topic, false}, count);
    }
  }
  for (const auto& [camera_id, types] : objects_) {
    for (const auto& [type, counts] : types) {
      for (const bool in_motion : {false, true}) {
        if (const Count count = counts.at(in_motion ? 1 : 0)) {
          take({Event::Kind::object, camera_id, type, in_motion}, count);
        }
      }
    }
  }
  for (const auto& [camera_id, count] : motion_) {
    take({Event::Kind::motion, camera_id, {}, false}, count);
  }
  for (const auto& [subscription_id, count] : generic_) {
    take({Event::Kind::subscription, subscription_id, {}, false}, count);
  }
}

}  // namespace kuv::vemora::operations
