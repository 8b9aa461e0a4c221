// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <set>
#include <string>

#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

/// Calls `take` with each text of a trigger that is stored. A topic is also stored with each
/// subscription, as its topic and its name. A database that cannot hold one of the texts refuses
/// the trigger. Names all fields of a source, so that it does not compile once one is added.
template <class Take>
void for_each_stored_text(const std::string& name, const std::set<Trigger_Source>& sources,
                          Take take) {
  take(name);
  for (const Trigger_Source& source : sources) {
    const auto& [type, onvif_topic, search_item, activity_duration] = source;
    if (onvif_topic) {
      take(*onvif_topic);
    }
    if (search_item) {
      const auto& [object_type, motion_required] = *search_item;
      take(object_type);
    }
  }
}

}  // namespace kuv::vemora::embedded_server
