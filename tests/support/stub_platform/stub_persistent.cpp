// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "support/stub_platform/camera_link.h"
#include "support/stub_platform/stub_platform.h"
#include "vemora/platform/database_enums.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/tags/tag_filter.h"

namespace stub = kuv::test::stub_platform;

namespace kuv::vemora {
namespace {

using Links = std::vector<odb::lazy_shared_ptr<trigger>>;

Links::iterator find(Links& links, std::uint64_t trigger_id) {
  return std::find_if(links.begin(), links.end(), [trigger_id](const Links::value_type& link) {
    return link.get()->id == trigger_id;
  });
}

}  // namespace

std::uint64_t eta_camera::camera_id() const {
  stub::called(stub::Function::eta_camera_camera_id, fmt::format("eta_camera {}: camera_id", id));
  return camera.object_id();
}

bool eta_camera::add_trigger(const std::shared_ptr<trigger>& added) {
  stub::called(stub::Function::eta_camera_add_trigger,
               fmt::format("eta_camera {}: add_trigger {}", id, added->id));
  return triggers.insert(added).second;
}

bool eta_camera::remove_trigger(const std::shared_ptr<trigger>& removed) {
  stub::called(stub::Function::eta_camera_remove_trigger,
               fmt::format("eta_camera {}: remove_trigger {}", id, removed->id));
  return triggers.erase(removed) != 0;
}

std::uint64_t metadata_event_subscription::camera_id() const {
  stub::called(stub::Function::subscription_camera_id,
               fmt::format("subscription {}: camera_id", id));
  return camera.object_id();
}

std::vector<std::uint64_t> metadata_event_subscription::trigger_ids() const {
  stub::called(stub::Function::subscription_trigger_ids,
               fmt::format("subscription {}: trigger_ids", id));
  std::vector<std::uint64_t> ids;
  for (const auto& link : trigger_links) {
    ids.push_back(link.get()->id);
  }
  return ids;
}

bool metadata_event_subscription::add_trigger(const std::shared_ptr<trigger>& added) {
  stub::called(stub::Function::subscription_add_trigger,
               fmt::format("subscription {}: add_trigger {}", id, added->id));
  if (find(trigger_links, added->id) != trigger_links.end()) {
    return false;
  }
  trigger_links.emplace_back(added);
  return true;
}

bool metadata_event_subscription::remove_trigger(const std::shared_ptr<trigger>& removed) {
  stub::called(stub::Function::subscription_remove_trigger,
               fmt::format("subscription {}: remove_trigger {}", id, removed->id));
  const auto place = find(trigger_links, removed->id);
  if (place == trigger_links.end()) {
    return false;
  }
  trigger_links.erase(place);
  return true;
}

namespace ODB_Utils {

bool Record_Comparator::operator()(const std::shared_ptr<camera>& left,
                                   const std::shared_ptr<camera>& right) const {
  stub::called(stub::Function::compare_cameras,
               fmt::format("compare camera {} with {}", left->id, right->id));
  return left->id < right->id;
}

bool Record_Comparator::operator()(const std::shared_ptr<trigger>& left,
                                   const std::shared_ptr<trigger>& right) const {
  stub::called(stub::Function::compare_triggers,
               fmt::format("compare trigger {} with {}", left->id, right->id));
  return left->id < right->id;
}

}  // namespace ODB_Utils

namespace Database_Enums {

/// A number stands for the type of that value, which may be one that only another server knows.
template <>
Trigger_Source_Type convert<Trigger_Source_Type>(const std::string& name) {
  stub::called(stub::Function::convert_source_type, fmt::format("convert {}", name));
  constexpr std::array<std::string_view, 6> names{"onvif-metadata",   "metadata-event",
                                                  "object-detection", "external",
                                                  "motion-detection", "audio-detection"};
  const auto* const found = std::find(names.begin(), names.end(), name);
  const auto value = found == names.end() ? std::stoi(name) : found - names.begin();
  return static_cast<Trigger_Source_Type>(value);
}

}  // namespace Database_Enums

namespace Tag_Filter {

bool matches_any(const std::map<std::string, Tag_Info>& tags,
                 const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  stub::called(stub::Function::matches_any, fmt::format("matches_any of {} terms", terms.size()));
  return terms.empty() || std::any_of(terms.begin(), terms.end(), [&tags](const auto& term) {
           const auto tag = tags.find(term.name);
           return tag != tags.end() && (!term.value || tag->second.value == term.value);
         });
}

}  // namespace Tag_Filter
}  // namespace kuv::vemora
