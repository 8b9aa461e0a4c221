#include <algorithm>
#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

// Stricter than the orderings of the sets, which pass over motion flags and durations: a change of
// those alone must reach the database too.

bool same(const Trigger_Mapping_Entry& left, const Trigger_Mapping_Entry& right) {
  return left.schedule->id == right.schedule->id;
}

bool same(const Object_Search_Item& left, const Object_Search_Item& right) {
  return left.object_type == right.object_type && left.motion_required == right.motion_required;
}

bool same(const Activity_Duration& left, const Activity_Duration& right) {
  return left.mode == right.mode && left.min_duration == right.min_duration &&
         left.dropout == right.dropout;
}

template <class Value>
bool same(const std::optional<Value>& left, const std::optional<Value>& right) {
  return left.has_value() == right.has_value() && (!left || same(*left, *right));
}

bool same(const Trigger_Source& left, const Trigger_Source& right) {
  return left.type == right.type && left.onvif_topic == right.onvif_topic &&
         same(left.search_item, right.search_item) &&
         same(left.activity_duration, right.activity_duration);
}

template <class Element>
bool same(const std::set<Element>& left, const std::set<Element>& right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](const Element& a, const Element& b) { return same(a, b); });
}

/// Takes over what differs; true when something did.
bool take_over(const Trigger_Config& config, trigger& record) {
  bool changed = false;
  if (record.name != config.name) {
    record.name = config.name;
    changed = true;
  }
  if (!same(record.schedules, config.schedules)) {
    record.schedules = config.schedules;
    changed = true;
  }
  if (!same(record.sources, config.sources)) {
    record.sources = config.sources;
    changed = true;
  }
  return changed;
}

}  // namespace

std::shared_ptr<trigger> Vemora_Trigger_Manager::get_trigger_record_(const Trigger_Config& config) {
  std::shared_ptr<trigger> record = repository_->triggers().find_by_id(config.id);
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
  if (!repository_->triggers().add(record)) {
    throw Internal_Error<std::runtime_error>("Failed to create trigger", error_codes::internal);
  }
  return record;
}

void Vemora_Trigger_Manager::update_trigger_record_(const std::shared_ptr<trigger>& record,
                                                    const Trigger_Config& config) {
  if (take_over(config, *record) && !repository_->triggers().update(record)) {
    throw Internal_Error<std::runtime_error>("Failed to update trigger", error_codes::internal);
  }
}

}  // namespace kuv::vemora
