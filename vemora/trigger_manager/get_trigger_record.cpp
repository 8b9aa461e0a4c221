// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/strict_equality.h"

namespace kuv::vemora {
namespace {

/// Takes over what differs; true when something did.
bool take_over(const Trigger_Config& config, trigger& record) {
  bool changed = false;
  if (record.name != config.name) {
    record.name = config.name;
    changed = true;
  }
  if (!strict_equality::same(record.schedules, config.schedules)) {
    record.schedules = config.schedules;
    changed = true;
  }
  if (!strict_equality::same(record.sources, config.sources)) {
    record.sources = config.sources;
    changed = true;
  }
  return changed;
}

}  // namespace

std::shared_ptr<trigger> Vemora_Trigger_Manager::get_trigger_record_(const Trigger_Config& config) {
  std::shared_ptr<trigger> record = required(repository_).triggers().find_by_id(config.id);
  if (!is_active(config)) {
    return record;
  }
  if (!record) {
    return create_trigger_record_(config);
  }
  update_trigger_record_(record, config);
  return record;
}

std::shared_ptr<trigger> Vemora_Trigger_Manager::create_trigger_record_(
    const Trigger_Config& config) {
  auto record = std::make_shared<trigger>();
  record->id = config.id;
  record->name = config.name;
  record->schedules = config.schedules;
  record->sources = config.sources;
  if (!required(repository_).triggers().add(record)) {
    throw Internal_Error<std::runtime_error>("Failed to create trigger", error_codes::internal);
  }
  return record;
}

void Vemora_Trigger_Manager::update_trigger_record_(const std::shared_ptr<trigger>& record,
                                                    const Trigger_Config& config) {
  if (take_over(config, *record) && !required(repository_).triggers().update(record)) {
    throw Internal_Error<std::runtime_error>("Failed to update trigger", error_codes::internal);
  }
}

}  // namespace kuv::vemora
