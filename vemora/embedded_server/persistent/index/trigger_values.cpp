#include "vemora/embedded_server/persistent/index/trigger_values.h"

#include <algorithm>

namespace kuv::vemora::embedded_server {
namespace {

bool same_source(const Trigger_Source& left, const Trigger_Source& right) {
  const auto same_item = [](const Object_Search_Item& a, const Object_Search_Item& b) {
    return a.object_type == b.object_type && a.motion_required == b.motion_required;
  };
  const auto same_duration = [](const Activity_Duration& a, const Activity_Duration& b) {
    return a.mode == b.mode && a.min_duration == b.min_duration && a.dropout == b.dropout;
  };
  return left.type == right.type && left.onvif_topic == right.onvif_topic &&
         left.search_item.has_value() == right.search_item.has_value() &&
         (!left.search_item || same_item(*left.search_item, *right.search_item)) &&
         left.activity_duration.has_value() == right.activity_duration.has_value() &&
         (!left.activity_duration ||
          same_duration(*left.activity_duration, *right.activity_duration));
}

bool same_schedule(const Trigger_Mapping_Entry& left, const Trigger_Mapping_Entry& right) {
  return left.schedule->id == right.schedule->id;
}

bool same_sources(const std::set<Trigger_Source>& left, const std::set<Trigger_Source>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same_source);
}

bool same_schedules(const std::set<Trigger_Mapping_Entry>& left,
                    const std::set<Trigger_Mapping_Entry>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(), same_schedule);
}

}  // namespace

bool same_values(const trigger& left, const trigger& right) {
  return left.name == right.name && same_sources(left.sources, right.sources) &&
         same_schedules(left.schedules, right.schedules);
}

}  // namespace kuv::vemora::embedded_server
