// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

/// The trigger's own schedules, each as the mapping holds it where the mapping has it.
std::set<Trigger_Mapping_Entry> prefer_mapped(const std::set<Trigger_Mapping_Entry>& own,
                                              const std::set<Trigger_Mapping_Entry>& mapped) {
  std::set<Trigger_Mapping_Entry> result;
  for (const Trigger_Mapping_Entry& entry : own) {
    const auto same_schedule = mapped.find(entry);
    result.insert(same_schedule == mapped.end() ? entry : *same_schedule);
  }
  return result;
}

}  // namespace

void Vemora_Trigger_Parser::set_trigger_mapping_in_config_(Trigger_Config& config,
                                                           const Json::Value& schedule_ids,
                                                           const Trigger_Mapping& mapping,
                                                           Faults& faults) {
  if (schedule_ids.isNull()) {
    return;  // without schedules of its own the mapping does not concern the trigger
  }
  const std::optional<std::set<Trigger_Mapping_Entry>> own =
      parse_schedule_ids_array_(schedule_ids, faults);

  const auto found = mapping.find(config.id);
  const bool mapping_invalid = found != mapping.end() && !found->second;
  if (mapping_invalid || !own) {
    config.schedule_invalid = true;
    return;
  }
  config.schedules = found == mapping.end() ? *own : prefer_mapped(*own, *found->second);
}

}  // namespace kuv::vemora
