// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <cstdint>
#include <utility>

#include "vemora/platform/utils/json_elements.h"
#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/parse_ids.h"
#include "vemora/trigger_parser/required_repository.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

using Schedules = std::optional<std::set<Trigger_Mapping_Entry>>;

std::vector<std::uint64_t> parse_trigger_ids(const Member& ids, Faults& faults) {
  if (!faults.require(ids->isArray(), ids, "\"triggerIds\" array is missing or invalid.") ||
      !faults.require(!ids->empty(), ids, "\"triggerIds\" array is empty.")) {
    return {};
  }
  return parse_ids(*ids, "\"triggerIds\" must be an array of unsigned integers.", faults);
}

/// Once one association of a trigger cannot be resolved the trigger stays marked, whatever other
/// associations say: an operator who named a schedule that is gone must not get a trigger that runs
/// at other times than those asked for.
void associate(Trigger_Mapping& mapping, std::uint64_t trigger_id, const Schedules& schedules) {
  const auto [position, is_new] = mapping.try_emplace(trigger_id, schedules);
  Schedules& associated = position->second;
  if (is_new || !associated) {
    return;
  }
  if (schedules) {
    associated->insert(schedules->begin(), schedules->end());
  } else {
    associated.reset();
  }
}

}  // namespace

Trigger_Mapping Vemora_Trigger_Parser::parse_trigger_mapping(const Json::Value& document) {
  Faults faults;
  return parse_trigger_mapping_(document, faults);
}

Trigger_Mapping Vemora_Trigger_Parser::parse_trigger_mapping(const Json::Value& document,
                                                             Fault_Sink& sink) {
  Faults faults(sink);
  return parse_trigger_mapping_(document, faults);
}

Trigger_Mapping Vemora_Trigger_Parser::parse_trigger_mapping_(const Json::Value& document,
                                                              Faults& faults) {
  Trigger_Mapping mapping;
  if (!faults.require(document.isObject(), document, "Trigger mapping must be a JSON object.")) {
    return mapping;
  }
  const Json::Value& associations = document["triggerMapping"];
  if (!faults.require(associations.isArray(), Member(associations, document),
                      "\"triggerMapping\" array is missing or invalid.")) {
    return mapping;
  }
  for (const auto& [index, association] : kuv::utils::Json_Elements(associations)) {
    faults.enter_element(index);
    if (!faults.require(association.isObject(), Member(association, associations),
                        "\"triggerMapping\" must be an array of JSON objects.")) {
      continue;
    }
    const Schedules schedules = parse_mapping_entries_(association, faults);
    const Member trigger_ids(association["triggerIds"], association);
    for (const std::uint64_t trigger_id : parse_trigger_ids(trigger_ids, faults)) {
      associate(mapping, trigger_id, schedules);
    }
  }
  return mapping;
}

std::optional<std::set<Trigger_Mapping_Entry>> Vemora_Trigger_Parser::parse_mapping_entries_(
    const Json::Value& object, Faults& faults) {
  std::set<Trigger_Mapping_Entry> entries;
  const Json::Value& ids = object["scheduleIds"];
  if (!faults.require(ids.isArray(), Member(ids, object),
                      "\"scheduleIds\" array is missing or invalid.")) {
    return entries;
  }
  for (const std::uint64_t schedule_id :
       parse_ids(ids, "\"scheduleIds\" must be an array of unsigned integers.", faults)) {
    std::shared_ptr<schedule> record =
        required_repository(repository_).schedules().get_by_id(schedule_id);
    if (!record || !record->usable) {
      return std::nullopt;
    }
    entries.insert(Trigger_Mapping_Entry{std::move(record)});
  }
  return entries;
}

std::optional<std::set<Trigger_Mapping_Entry>> Vemora_Trigger_Parser::parse_schedule_ids_array_(
    const Json::Value& schedule_ids, Faults& faults) {
  Json::Value object(Json::objectValue);
  object["scheduleIds"] = schedule_ids;
  return parse_mapping_entries_(object, faults);
}

}  // namespace kuv::vemora
