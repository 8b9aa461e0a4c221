// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <boost/function.hpp>
#include <boost/scope_exit.hpp>
#include <exception>
#include <utility>

#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

// One pass, from the two documents to the notification pusher.

Trigger_Config_State Vemora_Trigger_Manager::process_triggers_(const Json::Value& config,
                                                               const Json::Value& mapping,
                                                               Answer answer) {
  return apply_triggers_(parse_triggers_(config, mapping), answer);
}

Vemora_Trigger_Manager::Parsed_Config Vemora_Trigger_Manager::parse_triggers_(
    const Json::Value& config, const Json::Value& mapping) {
  Trigger_Parser& parser = required(parser_);
  Parsed_Config parsed;
  parsed.properties = parser.parse_config_properties(config);
  // The mapping first: an association that cannot be resolved makes a trigger inactive.
  const Trigger_Mapping schedules_by_trigger = parser.parse_trigger_mapping(mapping);
  parsed.triggers = parser.parse_trigger_configs(config, schedules_by_trigger);
  return parsed;
}

// By value: the pass owns what it works on, whoever parsed it.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
Trigger_Config_State Vemora_Trigger_Manager::apply_triggers_(Parsed_Config parsed, Answer answer) {
  const boost::function<void()> forget_the_pass = [this] {
    cameras_to_reconcile_.clear();
    state_ = Trigger_Config_State();
  };
  BOOST_SCOPE_EXIT_ALL(&forget_the_pass) {
    forget_the_pass();
  };

  state_.properties = parsed.properties;
  for (const Trigger_Config& config : parsed.triggers) {
    try {
      apply_trigger_(config);
    } catch (const std::exception& error) {
      report_failure_(
          fmt::format("Trigger {}: Failed to process config ({}).", config.id, error.what()));
    }
  }
  finalize_processing_(answer);
  return state_;  // a copy; without memory for it the pass fails
}

void Vemora_Trigger_Manager::apply_trigger_(const Trigger_Config& config) {
  const std::shared_ptr<trigger> record = get_trigger_record_(config);
  if (!record) {
    return;  // inactive, and never stored
  }
  if (!is_active(config)) {
    remove_trigger_from_all_records_(record);
    return;  // not counted as applied, so that the clean-up deletes its record
  }
  process_sources_({record, config});
  // If an id ever came twice, the options of the first trigger would be kept.
  state_.applied_triggers.emplace(config.id, config.options);
}

void Vemora_Trigger_Manager::finalize_processing_(Answer answer) {
  // Before the deletion: the cameras of deleted subscriptions could not be found any more.
  gather_stale_subscription_cameras_();
  cleanup_stale_records_();
  // After it: the cameras that lost subscriptions are reconciled in this pass, not in the next.
  update_streams_if_necessary_();
  // Last: the pusher receives what the database holds at the end of the pass.
  sync_notification_pusher_(answer);
}

}  // namespace kuv::vemora
