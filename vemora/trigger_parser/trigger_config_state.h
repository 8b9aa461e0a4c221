// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/directive_config_processing.h"
#include "vemora/platform/export.h"
#include "vemora/trigger_parser/notification_properties.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The outcome of one pass: what failed, and what each trigger listens to from now on.
struct Trigger_Config_State {
  /// Appends a failure; the caller has logged it.
  VEMORA_API void add_error(Directive_Config_Processing::Error::Category category,
                            std::string&& message);

  // The maps are by trigger id, those inside them by camera id.

  /// The triggers that are active here and did not fail.
  std::map<std::uint64_t, Trigger_Config::Options> applied_triggers;
  /// What cameras deliver.
  std::map<std::uint64_t, std::map<std::uint64_t, std::set<std::string>>> onvif_topics_by_trigger;
  std::vector<Directive_Config_Processing::Error> errors;  ///< in the order in which they happened
  std::map<std::uint64_t, std::set<std::uint64_t>> subscriptions_by_trigger;  ///< generic ones
  /// What object detection looks for, general names replaced by what they stand for.
  std::map<std::uint64_t, std::map<std::uint64_t, std::set<Object_Search_Item>>>
      search_items_by_trigger;
  Notification_Properties properties;  ///< of the configuration document
};

}  // namespace kuv::vemora
