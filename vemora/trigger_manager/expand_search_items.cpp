#include <map>

#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

/// Motion is required of a type only if every item that stands for it requires it: one that does
/// not must see the objects that stand still.
std::set<Object_Search_Item> Vemora_Trigger_Manager::expand_search_items_(
    const std::set<Object_Search_Item>& items) const {
  std::map<std::string, bool> motion_required_by_type;
  for (const Object_Search_Item& item : items) {
    for (const std::string& type : meta_type_resolver_->resolve({item.object_type})) {
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
