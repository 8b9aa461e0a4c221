// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/manager_lock.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

Trigger_Config_State Vemora_Trigger_Manager::update_trigger_mapping(const Json::Value& mapping) {
  const Pass_Lock lock(mutex_, "update_trigger_mapping");
  // Nothing is caught: whoever changes the mapping works with exceptions and wants the cause
  // itself, whereas a configuration comes from an operator, who gets an answer in any case.
  Trigger_Config_State state = process_triggers_(config_, mapping, Answer::whole_state);
  trigger_mapping_ = mapping;
  return state;
}

}  // namespace kuv::vemora
