// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <set>
#include <string>

#include "vemora/platform/records/trigger.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/trigger_parser/trigger_config.h"

/// What triggers search for where objects are detected. Inline, for whoever has to say the same of
/// a stored trigger as a pass tells the pusher.
namespace kuv::vemora {

/// The search items of a trigger's sources, as they were configured.
inline std::set<Object_Search_Item> search_items(const trigger& record) {
  std::set<Object_Search_Item> items;
  for (const Trigger_Source& source : record.sources) {
    if (source.type == Trigger_Source_Type::object_detection && source.search_item) {
      items.insert(*source.search_item);
    }
  }
  return items;
}

/// The object types that the items stand for. Motion is required of a type only if every item that
/// stands for it requires it: one that does not must see the objects that stand still.
inline std::set<Object_Search_Item> expand_search_items(const std::set<Object_Search_Item>& items,
                                                        Meta_Type_Resolver& resolver) {
  std::map<std::string, bool> motion_required_by_type;
  for (const Object_Search_Item& item : items) {
    for (const std::string& type : resolver.resolve({item.object_type})) {
      bool& motion_required = motion_required_by_type.try_emplace(type, true).first->second;
      motion_required = motion_required && item.motion_required;
    }
  }
  std::set<Object_Search_Item> expanded;
  for (const auto& [type, motion_required] : motion_required_by_type) {
    expanded.insert(expanded.end(), Object_Search_Item{type, motion_required});
  }
  return expanded;
}

}  // namespace kuv::vemora
