// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/unusable_schedules.h"

namespace kuv::vemora::operations {

void warn_of_unusable_schedules(Schedule_Look_Up& schedules,
                                const std::vector<Judged_Trigger>& triggers,
                                Found_Warnings& found) {
  for (const Judged_Trigger& trigger : triggers) {
    if (!trigger.is_ours || trigger.config == nullptr || !trigger.config->schedule_invalid) {
      continue;
    }
    for (const Json::Value& id : trigger.element["scheduleIds"]) {
      if (const Schedule_Fault* const fault = schedules.fault_of(id.asUInt64())) {
        found.in_config(fault->code, id, trigger.subject,
                        fault->text + ", so the trigger is inactive; " + fault->advice);
      }
    }
  }
}

}  // namespace kuv::vemora::operations
