// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <optional>
#include <set>

#include "vemora/platform/records/trigger.h"
#include "vemora/trigger_parser/trigger_config.h"

/// Equality field by field. It is stricter than the orderings of the sets, which ignore motion
/// flags and durations: a change of those alone must reach the database too. Schedules are the same
/// when their ids are.
///
/// Inline, so that neither the product nor a server's database library needs a symbol of the other.
/// Each function names all fields of its type, so that it does not compile once a field is added
/// and not compared.
namespace kuv::vemora::strict_equality {

/// By the schedule's id.
inline bool same(const Trigger_Mapping_Entry& left, const Trigger_Mapping_Entry& right) {
  return left.schedule->id == right.schedule->id;
}

/// By every field, unlike operator<.
inline bool same(const Object_Search_Item& left, const Object_Search_Item& right) {
  const auto& [object_type, motion_required] = left;
  return object_type == right.object_type && motion_required == right.motion_required;
}

/// By every field.
inline bool same(const Activity_Duration& left, const Activity_Duration& right) {
  const auto& [mode, min_duration, dropout] = left;
  return mode == right.mode && min_duration == right.min_duration && dropout == right.dropout;
}

/// Both unset, or both set to the same.
template <class Value>
bool same(const std::optional<Value>& left, const std::optional<Value>& right) {
  return left.has_value() == right.has_value() && (!left || same(*left, *right));
}

/// By every field, unlike operator<.
inline bool same(const Trigger_Source& left, const Trigger_Source& right) {
  const auto& [type, onvif_topic, search_item, activity_duration] = left;
  return type == right.type && onvif_topic == right.onvif_topic &&
         same(search_item, right.search_item) && same(activity_duration, right.activity_duration);
}

/// As many elements, each the same as its counterpart.
template <class Element>
bool same(const std::set<Element>& left, const std::set<Element>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const Element& a, const Element& b) { return same(a, b); });
}

/// By every field of the record.
inline bool same(const trigger& left, const trigger& right) {
  const auto& [id, name, schedules, sources] = left;
  return id == right.id && name == right.name && same(schedules, right.schedules) &&
         same(sources, right.sources);
}

}  // namespace kuv::vemora::strict_equality
