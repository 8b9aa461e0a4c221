#include <cstdint>
#include <utility>

#include "trigger_parser/validation.h"
#include "vemora/platform/utils/json.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

using Schedules = std::optional<std::set<Trigger_Mapping_Entry>>;

std::vector<std::uint64_t> parse_trigger_ids(const Json::Value& ids) {
  require(ids.isArray(), "\"triggerIds\" array is missing or invalid.");
  require(!ids.empty(), "\"triggerIds\" array is empty.");
  std::vector<std::uint64_t> trigger_ids;
  require(kuv::utils::transform_json_array(ids, trigger_ids),
          "\"triggerIds\" must be an array of unsigned integers.");
  return trigger_ids;
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
  require(document.isObject(), "Trigger mapping must be a JSON object.");
  const Json::Value& associations = document["triggerMapping"];
  require(associations.isArray(), "\"triggerMapping\" array is missing or invalid.");

  Trigger_Mapping mapping;
  for (const Json::Value& association : associations) {
    require(association.isObject(), "\"triggerMapping\" must be an array of JSON objects.");
    const Schedules schedules = parse_mapping_entries_(association);
    for (const std::uint64_t trigger_id : parse_trigger_ids(association["triggerIds"])) {
      associate(mapping, trigger_id, schedules);
    }
  }
  return mapping;
}

std::optional<std::set<Trigger_Mapping_Entry>> Vemora_Trigger_Parser::parse_mapping_entries_(
    const Json::Value& object) {
  const Json::Value& ids = object["scheduleIds"];
  require(ids.isArray(), "\"scheduleIds\" array is missing or invalid.");
  std::vector<std::uint64_t> schedule_ids;
  require(kuv::utils::transform_json_array(ids, schedule_ids),
          "\"scheduleIds\" must be an array of unsigned integers.");

  std::set<Trigger_Mapping_Entry> entries;
  for (const std::uint64_t schedule_id : schedule_ids) {
    std::shared_ptr<schedule> record = repository_->schedules().get_by_id(schedule_id);
    if (!record || !record->usable) {
      return std::nullopt;
    }
    entries.insert(Trigger_Mapping_Entry{std::move(record)});
  }
  return entries;
}

std::optional<std::set<Trigger_Mapping_Entry>> Vemora_Trigger_Parser::parse_schedule_ids_array_(
    const Json::Value& schedule_ids) {
  Json::Value object(Json::objectValue);
  object["scheduleIds"] = schedule_ids;
  return parse_mapping_entries_(object);
}

}  // namespace kuv::vemora
