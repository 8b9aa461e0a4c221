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

}  // namespace

bool Vemora_Trigger_Manager::refresh_triggers() {
  return refresh_triggers_(Answer::errors_alone).success;
}

bool Vemora_Trigger_Manager::refresh_triggers(Trigger_Config_State& state) {
  Refresh_Result result = refresh_triggers_(Answer::whole_state);
  state = std::move(result.state);
  return result.success;
}

Vemora_Trigger_Manager::Refresh_Result Vemora_Trigger_Manager::refresh_triggers_(Answer answer) {
  const Pass_Lock lock(mutex_, "refresh_triggers");
  Refresh_Result result;
  try {
    logger_.log(kuv::logging::severity_level::info, "Refreshing the trigger config.");
    result = {true, process_triggers_(config_, trigger_mapping_, answer)};
  } catch (const std::exception& error) {
    std::string text =
        fmt::format("Encountered error refreshing the trigger config: {}", error.what());
    log_failed_operation(logger_, text);
    result.state.add_error(Error::Category::failed_processing, std::move(text));
  }
  return result;
}

}  // namespace kuv::vemora
