// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/mass_deletion.h"

#include <fmt/format.h>

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::size_t fewest_of_a_mass = 10;

}  // namespace

bool is_mass_deletion(const Deletions::Of& counts) {
  return counts.deleted >= fewest_of_a_mass && counts.deleted > counts.stored - counts.deleted;
}

std::vector<Mass_Deletion> find_mass_deletions(const Deletions& deletions) {
  std::vector<Mass_Deletion> found;
  const auto judge = [&found](const char* what, const Deletions::Of& counts) {
    if (is_mass_deletion(counts)) {
      found.push_back({what, counts.deleted, counts.stored});
    }
  };
  judge("triggers", deletions.triggers);
  judge("cameras", deletions.cameras);
  judge("topic subscriptions", deletions.topic_subscriptions);
  judge("servers", deletions.servers);
  judge("schedules", deletions.schedules);
  judge("event categories", deletions.categories);
  judge("generic subscriptions", deletions.generic_subscriptions);
  judge("general object types", deletions.object_types);
  return found;
}

std::string describe(const std::vector<Mass_Deletion>& mass_deletions) {
  std::string text;
  for (const Mass_Deletion& each : mass_deletions) {
    text += text.empty() ? "" : " and ";
    text += fmt::format("{} of {} {}", each.deleted, each.stored, each.what);
  }
  return text;
}

}  // namespace kuv::vemora::embedded_server
