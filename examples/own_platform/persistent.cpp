// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The functions that the trigger manager expects in the server's persistence library: those of the
// records, the names of source types, and tag filters.

#include <algorithm>
#include <array>
#include <stdexcept>

#include "vemora/platform/database_enums.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/tags/tag_filter.h"

namespace kuv::vemora {
namespace {

using Links = std::vector<odb::lazy_shared_ptr<trigger>>;

/// Where the trigger is, or belongs. This server loads every link of a record, so that each holds
/// one.
template <class Link_List>
auto place_of(Link_List& links, std::uint64_t trigger_id) {
  return std::lower_bound(
      links.begin(), links.end(), trigger_id,
      [](const Links::value_type& link, std::uint64_t id) { return link.get()->id < id; });
}

/// Notes a change for the next update; one that undoes another is no change.
void note(std::vector<std::uint64_t>& noted, std::vector<std::uint64_t>& opposite,
          std::uint64_t trigger_id) {
  const auto undone = std::find(opposite.begin(), opposite.end(), trigger_id);
  if (undone == opposite.end()) {
    noted.push_back(trigger_id);
  } else {
    opposite.erase(undone);
  }
}

template <class Record>
bool comes_first(const std::shared_ptr<Record>& left, const std::shared_ptr<Record>& right) {
  return left && right ? left->id < right->id : !left && right;
}

}  // namespace

std::uint64_t eta_camera::camera_id() const {
  return camera.get()->id;
}

bool eta_camera::add_trigger(const std::shared_ptr<trigger>& added) {
  if (!triggers.insert(added).second) {
    return false;
  }
  note(link_changes.added, link_changes.removed, added->id);
  return true;
}

bool eta_camera::remove_trigger(const std::shared_ptr<trigger>& removed) {
  if (triggers.erase(removed) == 0) {
    return false;
  }
  note(link_changes.removed, link_changes.added, removed->id);
  return true;
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
  const auto place = place_of(trigger_links, added->id);
  if (place != trigger_links.end() && place->get()->id == added->id) {
    return false;
  }
  trigger_links.emplace(place, added);
  note(link_changes.added, link_changes.removed, added->id);
  return true;
}

bool metadata_event_subscription::remove_trigger(const std::shared_ptr<trigger>& removed) {
  const auto place = place_of(trigger_links, removed->id);
  if (place == trigger_links.end() || place->get()->id != removed->id) {
    return false;
  }
  trigger_links.erase(place);
  note(link_changes.removed, link_changes.added, removed->id);
  return true;
}

namespace ODB_Utils {

bool Record_Comparator::operator()(const std::shared_ptr<camera>& left,
                                   const std::shared_ptr<camera>& right) const {
  return comes_first(left, right);
}

bool Record_Comparator::operator()(const std::shared_ptr<trigger>& left,
                                   const std::shared_ptr<trigger>& right) const {
  return comes_first(left, right);
}

}  // namespace ODB_Utils

namespace Database_Enums {

template <>
Trigger_Source_Type convert<Trigger_Source_Type>(const std::string& name) {
  constexpr std::array<const char*, 6> names{"onvif-metadata",   "metadata-event",
                                             "object-detection", "external",
                                             "motion-detection", "audio-detection"};
  const auto* const found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    throw std::invalid_argument(name + " is no type of a source");
  }
  return static_cast<Trigger_Source_Type>(found - names.begin());
}

}  // namespace Database_Enums

namespace Tag_Filter {

bool matches_any(const std::map<std::string, Tag_Info>& tags,
                 const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  return terms.empty() || std::any_of(terms.begin(), terms.end(), [&tags](const auto& term) {
           const auto tag = tags.find(term.name);
           return tag != tags.end() && satisfies(tag->second, term);
         });
}

}  // namespace Tag_Filter
}  // namespace kuv::vemora
