// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "system/passes/pass_model.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace kuv::test {
namespace {

using Ids = Pass_Model::Ids;

bool matches(const Tag_Map& tags, const Tag_Filter_Spec& filter) {
  return filter.empty() || std::any_of(filter.begin(), filter.end(), [&tags](const auto& term) {
           const auto tag = tags.find(term.first);
           return tag != tags.end() && (!term.second || tag->second.value == term.second);
         });
}

/// {"site": "north"} for one wanted value, {"site": ["north", null]} for several.
Json::Value json_of(const Tag_Filter_Spec& filter) {
  std::map<std::string, std::vector<Json::Value>> values;
  for (const auto& [name, value] : filter) {
    values[name].push_back(value ? Json::Value(*value) : Json::Value());
  }
  Json::Value object(Json::objectValue);
  for (const auto& [name, wanted] : values) {
    if (wanted.size() == 1) {
      object[name] = wanted.front();
      continue;
    }
    for (const Json::Value& value : wanted) {
      object[name].append(value);
    }
  }
  return object;
}

Json::Value json_of(const Ids& ids) {
  Json::Value array(Json::arrayValue);
  for (const std::uint64_t id : ids) {
    array.append(static_cast<Json::UInt64>(id));
  }
  return array;
}

Json::Value source(const std::string& type) {
  Json::Value object;
  object["type"] = type;
  return object;
}

Json::Value sources_of(const Trigger_Spec& trigger) {
  Json::Value sources(Json::arrayValue);
  for (const std::string& topic : trigger.topics) {
    Json::Value onvif = source("onvif-metadata");
    onvif["onvifTopic"] = topic;
    sources.append(onvif);
  }
  for (const auto& [type, motion_required] : trigger.object_types) {
    Json::Value detection = source("object-detection");
    detection["searchItem"]["type"] = type;
    detection["searchItem"]["motionRequired"] = motion_required;
    sources.append(detection);
  }
  const std::vector<std::pair<bool, std::string>> plain{{trigger.generic_events, "metadata-event"},
                                                        {trigger.motion, "motion-detection"},
                                                        {trigger.audio, "audio-detection"},
                                                        {trigger.external, "external"}};
  for (const auto& [wanted, type] : plain) {
    if (wanted) {
      sources.append(source(type));
    }
  }
  return sources;
}

/// With nothing but sources that are not ours a trigger is as good as not there.
bool has_sources(const Trigger_Spec& trigger) {
  return !trigger.topics.empty() || !trigger.object_types.empty() || trigger.generic_events ||
         trigger.motion || trigger.audio;
}

/// "name: triggers", in the order of the names.
template <class Records, class Name>
std::vector<std::string> named_lines(const Records& records, Name name_of) {
  std::map<std::string, const Ids*> by_name;
  for (const auto& [key, trigger_ids] : records) {
    by_name[name_of(key)] = &trigger_ids;
  }
  std::vector<std::string> lines;
  for (const auto& [name, ids] : by_name) {
    lines.push_back(fmt::format("{}:{}{}", name, ids->empty() ? "" : " ", fmt::join(*ids, " ")));
  }
  return lines;
}

}  // namespace

Json::Value document_of(const std::vector<Trigger_Spec>& triggers) {
  Json::Value document;
  document["triggers"] = Json::Value(Json::arrayValue);
  for (const Trigger_Spec& trigger : triggers) {
    Json::Value object;
    object["id"] = static_cast<Json::UInt64>(trigger.id);
    object["name"] = trigger.name;
    object["tags"]["server"] = json_of(trigger.server_filter);
    object["tags"]["camera"] = json_of(trigger.camera_filter);
    object["tags"]["eventSubscription"] = json_of(trigger.event_filter);
    object["sources"] = sources_of(trigger);
    object["anyTime"] = trigger.any_time;
    if (trigger.schedule_ids) {
      object["scheduleIds"] = json_of(*trigger.schedule_ids);
    }
    document["triggers"].append(object);
  }
  return document;
}

Json::Value document_of(const std::vector<Mapping_Spec>& mapping) {
  Json::Value document;
  document["triggerMapping"] = Json::Value(Json::arrayValue);
  for (const Mapping_Spec& entry : mapping) {
    Json::Value object;
    object["scheduleIds"] = json_of(entry.schedule_ids);
    object["triggerIds"] = json_of(entry.trigger_ids);
    document["triggerMapping"].append(object);
  }
  return document;
}

bool Pass_Model::usable(const std::set<std::uint64_t>& schedule_ids) const {
  return std::all_of(schedule_ids.begin(), schedule_ids.end(), [this](std::uint64_t id) {
    const auto found = site_.schedules().find(id);
    return found != site_.schedules().end() && found->second.usable;
  });
}

bool Pass_Model::is_active(const Trigger_Spec& trigger,
                           const std::vector<Mapping_Spec>& mapping) const {
  if (!matches(site_.servers().at(server_id_).tags, trigger.server_filter)) {
    return false;
  }
  if (!trigger.schedule_ids) {
    return true;  // tied to no schedule, whatever the mapping says
  }
  const bool mapped_well =
      std::all_of(mapping.begin(), mapping.end(), [&](const Mapping_Spec& entry) {
        return entry.trigger_ids.count(trigger.id) == 0 || usable(entry.schedule_ids);
      });
  return mapped_well && usable(*trigger.schedule_ids);
}

bool Pass_Model::selects(const Trigger_Spec& trigger, std::uint64_t camera_id) const {
  return matches(site_.cameras().at(camera_id).tags, trigger.camera_filter);
}

std::map<Pass_Model::Place, Ids> Pass_Model::wanted_subscriptions() const {
  std::map<Place, Ids> wanted;
  for (const auto& [camera_id, camera] : site_.cameras()) {
    for (const auto& [trigger_id, trigger] : active_) {
      for (const std::string& topic : trigger.topics) {
        const Place place{camera_id, topic};
        const bool can_be = camera.topics.count(topic) == 1 || subscriptions_.count(place) == 1;
        if (can_be && selects(trigger, camera_id)) {
          wanted[place].insert(trigger_id);
        }
      }
    }
  }
  return wanted;
}

std::map<std::uint64_t, Ids> Pass_Model::wanted_detections() const {
  std::map<std::uint64_t, Ids> wanted;
  for (const auto& [camera_id, camera] : site_.cameras()) {
    for (const auto& [trigger_id, trigger] : active_) {
      const bool watches = (!trigger.object_types.empty() && camera.object_detection) ||
                           (trigger.motion && camera.motion_detection);
      if (watches && selects(trigger, camera_id)) {
        wanted[camera_id].insert(trigger_id);
      }
    }
  }
  return wanted;
}

std::map<std::uint64_t, Ids> Pass_Model::wanted_generic() const {
  std::map<std::uint64_t, Ids> wanted;
  for (const auto& [id, subscription] : site_.subscriptions()) {
    wanted[id] = {};
    for (const auto& [trigger_id, trigger] : active_) {
      if (trigger.generic_events && matches(subscription.tags, trigger.event_filter)) {
        wanted[id].insert(trigger_id);
      }
    }
  }
  return wanted;
}

/// Nobody joins a topic without a camera, and only who listens to that topic on whatever camera
/// stays there.
void Pass_Model::take_off_topics_without_a_camera() {
  for (const auto& [id, topic] : without_camera_) {
    Ids staying;
    for (const std::uint64_t trigger_id : generic_.at(id)) {
      const auto found = active_.find(trigger_id);
      if (found != active_.end() && found->second.topics.count(topic) == 1 &&
          found->second.camera_filter.empty()) {
        staying.insert(trigger_id);
      }
    }
    generic_[id] = staying;
  }
}

Ids Pass_Model::stored_ids() const {
  Ids ids;
  for (const auto& entry : active_) {
    ids.insert(entry.first);
  }
  return ids;
}

void Pass_Model::leave_behind_a_topic_without_a_camera(std::uint64_t id, const std::string& topic) {
  without_camera_[id] = topic;
  generic_[id] = stored_ids();
}

/// Enters the subscriptions that are there before the first snag.
bool Pass_Model::creates_its_subscriptions(const Trigger_Spec& trigger, const Snags& snags,
                                           std::set<Place>& present) const {
  for (const std::string& topic : trigger.topics) {
    for (const auto& [camera_id, camera] : site_.cameras()) {
      const Place place{camera_id, topic};
      if (camera.topics.count(topic) == 0 || !selects(trigger, camera_id) ||
          present.count(place) == 1) {
        continue;
      }
      if (snags.count({trigger.id, camera_id}) == 1) {
        return false;
      }
      present.insert(place);
    }
  }
  return true;
}

/// A stream is asked for when a subscription of the camera comes or goes, be it within the pass,
/// and when a trigger that was looked at joins or leaves one. A trigger that was not looked at is
/// deleted without a word to the cameras of the subscriptions that others keep.
void Pass_Model::note_cameras(const std::map<Place, Ids>& wanted, const std::set<Place>& present,
                              const Ids& processed) {
  reconciled_.clear();
  changed_cameras_.clear();
  cameras_left_alone_.clear();
  for (const Place& place : present) {
    const auto before = subscriptions_.find(place);
    const auto after = wanted.find(place);
    const bool was = before != subscriptions_.end();
    const bool is = after != wanted.end();
    Ids changed;
    if (was && is) {
      std::set_symmetric_difference(before->second.begin(), before->second.end(),
                                    after->second.begin(), after->second.end(),
                                    std::inserter(changed, changed.end()));
    }
    const bool joined_or_left =
        std::any_of(changed.begin(), changed.end(),
                    [&processed](std::uint64_t id) { return processed.count(id) == 1; });
    if (was != is || joined_or_left) {
      changed_cameras_.insert(place.first);
    }
    if (!was || !is || joined_or_left) {
      reconciled_.insert(place.first);
    } else if (!changed.empty()) {
      cameras_left_alone_.insert(place.first);
    }
  }
}

void Pass_Model::pass(const std::vector<Trigger_Spec>& triggers,
                      const std::vector<Mapping_Spec>& mapping, const Snags& snags) {
  active_.clear();
  failed_.clear();
  Ids processed;
  std::set<Place> present;
  for (const auto& entry : subscriptions_) {
    present.insert(entry.first);
  }
  for (const Trigger_Spec& trigger : triggers) {
    if (!has_sources(trigger)) {
      continue;
    }
    const bool active = is_active(trigger, mapping);
    if (active && !creates_its_subscriptions(trigger, snags, present)) {
      failed_.push_back(trigger.id);
      continue;
    }
    processed.insert(trigger.id);
    if (active) {
      active_.emplace(trigger.id, trigger);
    }
  }
  const std::map<Place, Ids> wanted = wanted_subscriptions();
  note_cameras(wanted, present, processed);
  subscriptions_ = wanted;
  take_off_topics_without_a_camera();
  for (auto& [id, trigger_ids] : wanted_generic()) {
    generic_[id] = trigger_ids;
  }
  detections_ = wanted_detections();
}

std::string Pass_Model::searched_by(std::uint64_t trigger_id) const {
  std::map<std::string, bool> motion_required;
  for (const auto& [name, in_motion] : active_.at(trigger_id).object_types) {
    const auto general = leaves_.find(name);
    for (const std::string& type :
         general == leaves_.end() ? std::vector<std::string>{name} : general->second) {
      const auto [place, is_new] = motion_required.try_emplace(type, in_motion);
      place->second = place->second && in_motion;
    }
  }
  std::vector<std::string> texts;
  for (const auto& [type, in_motion] : motion_required) {
    texts.push_back(type + (in_motion ? " in motion" : ""));
  }
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::vector<std::string> Pass_Model::state() const {
  std::vector<std::string> lines;
  for (const auto& [id, trigger] : active_) {
    lines.push_back(fmt::format("{} applied{}", id, trigger.any_time ? " at any time" : ""));
  }
  std::map<std::pair<std::uint64_t, std::uint64_t>, std::set<std::string>> topics;
  for (const auto& [place, trigger_ids] : subscriptions_) {
    for (const std::uint64_t id : trigger_ids) {
      topics[{id, place.first}].insert(place.second);
    }
  }
  for (const auto& [key, names] : topics) {
    lines.push_back(
        fmt::format("{} camera {} topics {}", key.first, key.second, fmt::join(names, " ")));
  }
  std::map<std::uint64_t, Ids> joined;
  for (const auto& [subscription_id, trigger_ids] : generic_) {
    for (const std::uint64_t id : trigger_ids) {
      joined[id].insert(subscription_id);
    }
  }
  for (const auto& [id, subscription_ids] : joined) {
    lines.push_back(fmt::format("{} subscriptions {}", id, fmt::join(subscription_ids, " ")));
  }
  std::map<std::pair<std::uint64_t, std::uint64_t>, std::string> searched;
  for (const auto& [camera_id, trigger_ids] : detections_) {
    for (const std::uint64_t id : trigger_ids) {
      searched[{id, camera_id}] = searched_by(id);
    }
  }
  for (const auto& [key, items] : searched) {
    lines.push_back(fmt::format("{} camera {} searches {}", key.first, key.second, items));
  }
  return lines;
}

std::vector<std::string> Pass_Model::topic_subscriptions() const {
  return named_lines(subscriptions_, [](const Place& place) {
    return fmt::format("camera {} topic {}", place.first, place.second);
  });
}

std::vector<std::string> Pass_Model::generic_subscriptions() const {
  return named_lines(generic_, [](std::uint64_t id) { return fmt::format("subscription {}", id); });
}

std::vector<std::string> Pass_Model::detections() const {
  return named_lines(detections_, [](std::uint64_t id) { return fmt::format("camera {}", id); });
}

std::vector<std::string> Pass_Model::stored_triggers() const {
  std::vector<std::string> texts;
  for (const auto& [id, trigger] : active_) {
    std::vector<std::string> schedules;
    for (const std::uint64_t schedule_id : trigger.schedule_ids.value_or(Ids())) {
      schedules.push_back(
          fmt::format("{} {}", schedule_id, site_.schedules().at(schedule_id).name));
    }
    std::vector<std::string> sources;
    for (const std::string& topic : trigger.topics) {
      sources.push_back(fmt::format("type 0 topic \"{}\"", topic));
    }
    if (trigger.generic_events) {
      sources.push_back("type 1");
    }
    for (const auto& [type, in_motion] : trigger.object_types) {
      sources.push_back(fmt::format("type 2 object \"{}\"{}", type, in_motion ? " in motion" : ""));
    }
    if (trigger.motion) {
      sources.push_back("type 4");
    }
    if (trigger.audio) {
      sources.push_back("type 5");
    }
    texts.push_back(fmt::format("trigger {} \"{}\" schedules [{}] sources [{}]", id, trigger.name,
                                fmt::join(schedules, ", "), fmt::join(sources, ", ")));
  }
  return texts;
}

}  // namespace kuv::test
