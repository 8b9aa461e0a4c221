// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/schedule_look_up.h"

#include <fmt/format.h>

#include "vemora/operations/warnings/found_warnings.h"

namespace kuv::vemora::operations {

const Schedule_Fault* Schedule_Look_Up::fault_of(std::uint64_t id) {
  const auto [known, is_new] = faults_.try_emplace(id);
  if (is_new) {
    const std::shared_ptr<schedule> record = repository_.schedules().get_by_id(id);
    if (!record) {
      known->second = std::make_unique<Schedule_Fault>(
          Schedule_Fault{"schedule-not-found", fmt::format("Schedule {} does not exist", id),
                         "correct the id, or add the schedule to the inventory."});
    } else if (!record->usable) {
      known->second = std::make_unique<Schedule_Fault>(
          Schedule_Fault{"schedule-not-usable",
                         fmt::format("Schedule {} ({}) is not usable", id, in_quotes(record->name)),
                         "take it out of the list, or make it usable."});
    }
  }
  return known->second.get();
}

}  // namespace kuv::vemora::operations
