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
  template <class Value>
  using By_Trigger = std::map<std::uint64_t, Value>;
  template <class Value>
  using By_Camera = std::map<std::uint64_t, Value>;

  /// Appends a failure; the caller has logged it.
  VEMORA_API void add_error(Directive_Config_Processing::Error::Category category,
                            std::string&& message);

  /// The triggers that were applied.
  By_Trigger<Trigger_Config::Options> applied_triggers;
  /// The ONVIF topics that reach a trigger, by the camera that sends them.
  By_Trigger<By_Camera<std::set<std::string>>> onvif_topics_by_trigger;
  /// The failures, in the order in which they happened.
  std::vector<Directive_Config_Processing::Error> errors;
  /// The ids of the generic subscriptions that reach a trigger.
  By_Trigger<std::set<std::uint64_t>> subscriptions_by_trigger;
  /// What object detection searches for on behalf of a trigger, by camera.
  By_Trigger<By_Camera<std::set<Object_Search_Item>>> search_items_by_trigger;
  /// The timing of the notifications.
  Notification_Properties properties;
};

}  // namespace kuv::vemora
