// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/search_items.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

std::set<Object_Search_Item> Vemora_Trigger_Manager::expand_search_items_(
    const std::set<Object_Search_Item>& items) const {
  if (items.empty()) {
    return {};
  }
  return expand_search_items(items, required(meta_type_resolver_));
}

}  // namespace kuv::vemora
