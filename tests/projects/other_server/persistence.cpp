// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <algorithm>

#include "vemora/platform/database_enums.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/tags/tag_filter.h"

namespace kuv::vemora {
namespace {

template <class Link>
auto find(std::vector<Link>& links, std::uint64_t id) {
  return std::find_if(links.begin(), links.end(),
                      [id](const Link& link) { return link.get()->id == id; });
}

}  // namespace

std::uint64_t eta_camera::camera_id() const {
  return camera.get()->id;
}

bool eta_camera::add_trigger(const std::shared_ptr<trigger>& added) {
  return triggers.insert(added).second;
}

bool eta_camera::remove_trigger(const std::shared_ptr<trigger>& removed) {
  return triggers.erase(removed) != 0;
}

std::uint64_t metadata_event_subscription::camera_id() const {
  return camera.get()->id;
}

std::vector<std::uint64_t> metadata_event_subscription::trigger_ids() const {
  std::vector<std::uint64_t> ids;
  for (const auto& link : trigger_links) {
    ids.push_back(link.get()->id);
  }
  return ids;
}

bool metadata_event_subscription::add_trigger(const std::shared_ptr<trigger>& added) {
  if (find(trigger_links, added->id) != trigger_links.end()) {
    return false;
  }
  trigger_links.emplace_back(added);
  return true;
}

bool metadata_event_subscription::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const auto link = find(trigger_links, removed->id);
  if (link == trigger_links.end()) {
    return false;
  }
  trigger_links.erase(link);
  return true;
}

namespace ODB_Utils {

bool Record_Comparator::operator()(const std::shared_ptr<camera>& left,
                                   const std::shared_ptr<camera>& right) const {
  return left->id < right->id;
}

bool Record_Comparator::operator()(const std::shared_ptr<trigger>& left,
                                   const std::shared_ptr<trigger>& right) const {
  return left->id < right->id;
}

}  // namespace ODB_Utils

namespace Database_Enums {

/// Of the source types this server has events of objects alone.
template <>
Trigger_Source_Type convert<Trigger_Source_Type>(const std::string& name) {
  if (name != "object-detection") {
    throw std::invalid_argument(name);
  }
  return Trigger_Source_Type::object_detection;
}

}  // namespace Database_Enums

namespace Tag_Filter {

bool matches_any(const std::map<std::string, Tag_Info>& tags,
                 const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  return terms.empty() || std::any_of(terms.begin(), terms.end(), [&tags](const auto& term) {
           return tags.count(term.name) != 0;
         });
}

}  // namespace Tag_Filter
}  // namespace kuv::vemora
