// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

/// Deletes every trigger that was not applied: those that left the configuration, that are inactive
/// here and that failed in this pass, so that no half-processed trigger fires.
void Vemora_Trigger_Manager::cleanup_stale_records_() {
  if (state_.applied_triggers.empty()) {
    // A call of its own: an empty set of ids to keep could also be a mistake.
    required(repository_).triggers().delete_all();
  } else {
    required(repository_).triggers().delete_all_except(applied_trigger_ids_());
  }
  required(repository_).metadata_event_subscriptions().delete_stale();
  required(repository_).eta_cameras().delete_stale();
}

std::set<std::uint64_t> Vemora_Trigger_Manager::applied_trigger_ids_() const {
  std::set<std::uint64_t> ids;
  for (const auto& applied : state_.applied_triggers) {
    ids.insert(ids.end(), applied.first);
  }
  return ids;
}

}  // namespace kuv::vemora
