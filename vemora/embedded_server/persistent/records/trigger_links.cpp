// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/records/trigger_links.h"

#include <algorithm>

#include "records-odb.h"

namespace kuv::vemora {
namespace {

/// Triggers mostly join in the order of their ids, so that the end of the list is looked at first.
template <class Links>
auto position_in(Links& links, std::uint64_t trigger_id) {
  if (links.empty() || id_of(links.back()) < trigger_id) {
    return links.end();
  }
  return std::lower_bound(
      links.begin(), links.end(), trigger_id,
      [](const Trigger_Link& link, std::uint64_t wanted) { return id_of(link) < wanted; });
}

}  // namespace

std::uint64_t id_of(const Trigger_Link& link) {
  const trigger* const loaded = link.get();
  return loaded != nullptr ? loaded->id : link.object_id();
}

Found_Link find_link(Trigger_Link_List& links, std::uint64_t trigger_id) {
  const auto position = position_in(links, trigger_id);
  return {position, position != links.end() && id_of(*position) == trigger_id};
}

bool holds(const Trigger_Link_List& links, std::uint64_t trigger_id) {
  const auto position = position_in(links, trigger_id);
  return position != links.end() && id_of(*position) == trigger_id;
}

void add_link(Trigger_Link_List& links, const std::shared_ptr<trigger>& added) {
  const Found_Link found = find_link(links, added->id);
  if (!found.is_there) {
    links.emplace(found.position, added);
  }
}

void add_link(Trigger_Set& links, const std::shared_ptr<trigger>& added) {
  links.insert(added);
}

void remove_link(Trigger_Link_List& links, std::uint64_t trigger_id) {
  const Found_Link found = find_link(links, trigger_id);
  if (found.is_there) {
    links.erase(found.position);
  }
}

void remove_link(Trigger_Set& links, std::uint64_t trigger_id) {
  const auto held = std::find_if(
      links.begin(), links.end(),
      [trigger_id](const std::shared_ptr<trigger>& link) { return link->id == trigger_id; });
  if (held != links.end()) {
    links.erase(held);
  }
}

}  // namespace kuv::vemora
