// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <exception>
#include <utility>

#include "vemora/trigger_manager/log_failed_operation.h"
#include "vemora/trigger_manager/manager_lock.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Directive_Config_Processing::Error;
using Directive_Config_Processing::Result;

Result failure(kuv::logging::Source& logger, Error::Category category, std::string text) {
  log_failed_operation(logger, text);
  return {false, {{category, std::move(text)}}};
}

}  // namespace

Result Vemora_Trigger_Manager::update_config(const Json::Value& config) {
  const Pass_Lock lock(mutex_, "update_config");
  Parsed_Config parsed;
  try {
    parsed = parse_triggers_(config, trigger_mapping_);
  } catch (const std::exception& error) {
    return failure(logger_, Error::Category::rejected_document,
                   fmt::format("Failed to parse trigger config: {}", error.what()));
  }
  try {
    Trigger_Config_State state = apply_triggers_(std::move(parsed), Answer::errors_alone);
    config_ = config;
    return {true, std::move(state.errors)};
  } catch (const std::exception& error) {
    return failure(logger_, Error::Category::failed_processing,
                   fmt::format("Failed to update trigger config: {}", error.what()));
  }
}

}  // namespace kuv::vemora
