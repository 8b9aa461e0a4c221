// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/explainer.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "vemora/operations/explain/camera_reasons.h"
#include "vemora/operations/explain/silence.h"
#include "vemora/operations/explain/trigger_reasons.h"
#include "vemora/trigger_parser/strict_equality.h"

namespace kuv::vemora::operations {
namespace {

using State = Explanation::State;

const trigger* find(const Site_Records& records, std::uint64_t id) {
  const auto found = records.triggers.find(id);
  return found == records.triggers.end() ? nullptr : &found->second;
}

/// How many places of one kind a refresh would change for a trigger.
template <class Lists>
std::size_t count_changes(const Lists& stored, const Lists& refreshed, std::uint64_t trigger_id) {
  std::size_t changes = 0;
  for (const auto& [place, ids] : stored) {
    const auto after = refreshed.find(place);
    const bool is_held = after != refreshed.end() && holds(after->second, trigger_id);
    changes += holds(ids, trigger_id) != is_held ? 1 : 0;
  }
  for (const auto& [place, ids] : refreshed) {
    changes += stored.count(place) == 0 && holds(ids, trigger_id) ? 1 : 0;
  }
  return changes;
}

std::size_t count_topic_changes(const Site_Records& stored, const Site_Records& refreshed,
                                std::uint64_t trigger_id) {
  const std::map<std::string, Site_Records::Ids> none;
  std::size_t changes = 0;
  for (const auto& [camera_id, topics] : stored.topics) {
    const auto after = refreshed.topics.find(camera_id);
    changes +=
        count_changes(topics, after == refreshed.topics.end() ? none : after->second, trigger_id);
  }
  for (const auto& [camera_id, topics] : refreshed.topics) {
    changes += stored.topics.count(camera_id) == 0 ? count_changes(none, topics, trigger_id) : 0;
  }
  return changes;
}

/// What a refresh would bring about, where it would.
void add_change(bool is, bool would_be, const char* joins, const char* leaves,
                const Reasons& because, Reasons& reasons) {
  if (is == would_be) {
    return;
  }
  std::string text = would_be ? joins : leaves;
  if (!would_be && !because.empty()) {
    text.back() = ':';
    text += " " + because.front().text;
  }
  reasons.push_back({"not-refreshed", std::move(text)});
}

}  // namespace

Explainer::Explainer(const Site_View& site, std::uint64_t trigger_id)
    : site_(site),
      id_(trigger_id),
      configured_(find_configured(site, trigger_id)),
      inactivity_(is_active(configured_) ? Reasons() : reasons_of_inactivity(site, configured_)) {
  if (configured_.config != nullptr) {
    const std::vector<std::string> topics = configured_.config->all_source_topics();
    own_topics_.insert(topics.begin(), topics.end());
    for (const auto& record :
         site.repository().cameras().get_cameras_matching_tags(configured_.config->tags.camera)) {
      selected_.insert(record->id);
    }
  }
  if (has_source(Trigger_Source_Type::metadata_event)) {
    find_joinable();
  }
}

void Explainer::find_joinable() {
  Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params wanted;
  wanted.kind = decltype(wanted)::Kind::generic;
  wanted.tags = configured_.config->tags.event_subscription;
  for (const auto& record :
       site_.repository().metadata_event_subscriptions().Get_Matching_Subscriptions(wanted)) {
    joinable_.insert(record->id);
  }
}

Explanation Explainer::of_trigger() const {
  Explanation explained;
  explained.id = id_;
  if (configured_.element != nullptr) {
    explained.name = (*configured_.element)["name"].asString();
  } else if (stored_record() != nullptr) {
    explained.name = stored_record()->name;
  }
  explained.state = state();
  explained.reasons = reasons();
  return explained;
}

Explanation Explainer::explanation(std::optional<std::uint64_t> camera_id) const {
  Explanation explained = of_trigger();
  for (const std::uint64_t id : cameras_to_explain()) {
    explained.cameras.push_back(camera(id));
  }
  for (const std::uint64_t id : subscriptions_to_explain()) {
    explained.subscriptions.push_back(subscription(id));
  }
  if (is_active(configured_) && explained.state == State::active && is_silent(explained)) {
    const Reasons silence = reasons_of_silence(site_, *configured_.config, explained);
    explained.reasons.insert(explained.reasons.begin(), silence.begin(), silence.end());
  }
  if (camera_id) {
    auto& cameras = explained.cameras;
    cameras.erase(std::remove_if(cameras.begin(), cameras.end(),
                                 [&](const auto& camera) { return camera.id != *camera_id; }),
                  cameras.end());
  }
  return explained;
}

State Explainer::state() const {
  if (configured_.element == nullptr) {
    return State::not_configured;
  }
  if (configured_.config == nullptr) {
    return State::dropped;
  }
  if (stored_record() != nullptr) {
    return State::active;
  }
  return is_active(configured_) && refreshed_record() == nullptr ? State::failed : State::inactive;
}

Reasons Explainer::reasons() const {
  Reasons reasons = inactivity_;
  if (is_active(configured_) && refreshed_record() == nullptr) {
    reasons.push_back(reason_of_failure(site_, id_));
  }
  if (const std::optional<Reason> change = reason_of_change()) {
    reasons.push_back(*change);
  }
  return reasons;
}

std::optional<Reason> Explainer::reason_of_change() const {
  const trigger* const before = stored_record();
  const trigger* const after = refreshed_record();
  if (before == nullptr && after != nullptr) {
    return Reason{
        "not-refreshed",
        "A refresh would make it active: nothing is stored of it, though the rules ask for "
        "it. The last pass failed for it, or the site has changed since."};
  }
  if (before != nullptr && after == nullptr) {
    return Reason{"not-refreshed", "A refresh would delete its record."};
  }
  const std::size_t places =
      count_topic_changes(site_.stored(), site_.refreshed(), id_) +
      count_changes(site_.stored().generic, site_.refreshed().generic, id_) +
      count_changes(site_.stored().detection, site_.refreshed().detection, id_);
  if (places > 0) {
    return Reason{"not-refreshed", fmt::format("A refresh would change where it listens, in {} {}.",
                                               places, places == 1 ? "place" : "places")};
  }
  if (before != nullptr && !strict_equality::same(*before, *after)) {
    return Reason{"not-refreshed", "A refresh would change what its record says."};
  }
  return std::nullopt;
}

Reasons Explainer::reasons_of_selection(std::uint64_t camera_id) const {
  const auto record = site_.cameras().find(camera_id);
  if (record == site_.cameras().end()) {
    return {reason_of_gone_camera(camera_id)};
  }
  if (configured_.config == nullptr) {
    return inactivity_;
  }
  return is_selected(camera_id)
             ? Reasons()
             : Reasons{reason_of_camera_filter(*configured_.config, *record->second)};
}

Explanation::Camera Explainer::camera(std::uint64_t camera_id) const {
  Explanation::Camera explained;
  explained.id = camera_id;
  const auto record = site_.cameras().find(camera_id);
  if (record != site_.cameras().end()) {
    explained.name = record->second->name;
  }
  explained.selected = is_selected(camera_id);
  explained.reasons = reasons_of_selection(camera_id);
  for (const std::string& topic_name : topics_at(camera_id)) {
    explained.topics.push_back(topic(camera_id, topic_name));
  }
  explain_detection(explained);
  return explained;
}

/// The sources' topics on the cameras selected, and whatever the trigger is subscribed to.
std::set<std::string> Explainer::topics_at(std::uint64_t camera_id) const {
  std::set<std::string> topics;
  if (is_selected(camera_id)) {
    topics = own_topics_;
  }
  const auto stored = site_.stored().topics.find(camera_id);
  if (stored != site_.stored().topics.end()) {
    for (const auto& [topic_name, ids] : stored->second) {
      if (holds(ids, id_)) {
        topics.insert(topic_name);
      }
    }
  }
  return topics;
}

Explanation::Topic Explainer::topic(std::uint64_t camera_id, const std::string& topic) const {
  Explanation::Topic explained{topic, is_subscribed(site_.stored(), id_, camera_id, topic), {}};
  const bool would_be = is_subscribed(site_.refreshed(), id_, camera_id, topic);
  const Reasons against = would_be ? Reasons() : rules_against_topic(camera_id, topic);
  if (!explained.subscribed) {
    explained.reasons = against;
  }
  add_change(explained.subscribed, would_be, "A refresh would subscribe it.",
             "A refresh would end the subscription.", against, explained.reasons);
  return explained;
}

Reasons Explainer::rules_against_topic(std::uint64_t camera_id, const std::string& topic) const {
  if (!is_active(configured_)) {
    return inactivity_;
  }
  if (!is_selected(camera_id)) {
    return reasons_of_selection(camera_id);
  }
  if (own_topics_.count(topic) == 0) {
    return {};  // a subscription that no source asks for
  }
  const Reasons reasons = reasons_of_capabilities(*site_.cameras().at(camera_id), topic);
  return reasons.empty() ? Reasons{reason_of_failure(site_, id_)} : reasons;
}

void Explainer::explain_detection(Explanation::Camera& camera) const {
  camera.detected = is_detected(site_.stored(), id_, camera.id);
  const trigger* const record = stored_record();
  if (camera.detected && record != nullptr) {
    for (const Object_Search_Item& item : site_.objects_of(*record)) {
      camera.objects.push_back(item.object_type);
    }
  }
  const bool would_be = is_detected(site_.refreshed(), id_, camera.id);
  // Also where something is detected: one source may be served there, and another one not.
  const Reasons against = rules_against_detection(camera);
  camera.reasons.insert(camera.reasons.end(), against.begin(), against.end());
  add_change(camera.detected, would_be, "A refresh would detect for it here.",
             "A refresh would end the detection.", {}, camera.reasons);
}

Reasons Explainer::rules_against_detection(const Explanation::Camera& camera) const {
  const bool by_objects = has_source(Trigger_Source_Type::object_detection);
  const bool by_motion = has_source(Trigger_Source_Type::motion_detection);
  if (!camera.selected || !(by_objects || by_motion)) {
    return {};
  }
  const auto& facts = *site_.cameras().at(camera.id);
  Reasons against;
  if (by_objects && !facts.object_detection) {
    against.push_back(reason_of_no_object_detection(camera.id));
  }
  if (by_motion && !facts.motion_detection) {
    against.push_back(reason_of_no_motion_detection(camera.id));
  }
  const bool is_eligible =
      (by_objects && facts.object_detection) || (by_motion && facts.motion_detection);
  if (is_active(configured_) && is_eligible && !is_detected(site_.refreshed(), id_, camera.id)) {
    against.push_back(reason_of_failure(site_, id_));
  }
  return against;
}

Explanation::Subscription Explainer::subscription(std::uint64_t subscription_id) const {
  Explanation::Subscription explained;
  explained.id = subscription_id;
  const auto facts = site_.subscriptions().find(subscription_id);
  if (facts != site_.subscriptions().end()) {
    explained.name = facts->second.name;
  }
  explained.joined = is_joined(site_.stored(), id_, subscription_id);
  const bool would_be = is_joined(site_.refreshed(), id_, subscription_id);
  const Reasons against = would_be ? Reasons() : rules_against_subscription(subscription_id);
  if (!explained.joined) {
    explained.reasons = against;
  }
  add_change(explained.joined, would_be, "A refresh would join it.", "A refresh would end this.",
             against, explained.reasons);
  return explained;
}

Reasons Explainer::rules_against_subscription(std::uint64_t subscription_id) const {
  if (!is_active(configured_)) {
    return inactivity_;
  }
  const auto facts = site_.subscriptions().find(subscription_id);
  if (facts == site_.subscriptions().end() || !has_source(Trigger_Source_Type::metadata_event)) {
    return {};  // a link that no source asks for
  }
  if (joinable_.count(subscription_id) != 0) {
    return {reason_of_failure(site_, id_)};
  }
  return {reason_of_subscription_filter(*configured_.config, subscription_id, facts->second)};
}

std::set<std::uint64_t> Explainer::cameras_to_explain() const {
  std::set<std::uint64_t> ids;
  for (const auto& [id, record] : site_.cameras()) {
    ids.insert(id);
  }
  for (const auto& [id, topics] : site_.stored().topics) {
    if (std::any_of(topics.begin(), topics.end(),
                    [this](const auto& topic) { return holds(topic.second, id_); })) {
      ids.insert(id);
    }
  }
  for (const auto& [id, triggers] : site_.stored().detection) {
    if (holds(triggers, id_)) {
      ids.insert(id);
    }
  }
  return ids;
}

std::set<std::uint64_t> Explainer::subscriptions_to_explain() const {
  std::set<std::uint64_t> ids;
  if (has_source(Trigger_Source_Type::metadata_event)) {
    for (const auto& [id, facts] : site_.subscriptions()) {
      ids.insert(id);
    }
  }
  for (const auto& [id, triggers] : site_.stored().generic) {
    if (holds(triggers, id_)) {
      ids.insert(id);
    }
  }
  return ids;
}

bool Explainer::has_source(Trigger_Source_Type type) const {
  return configured_.config != nullptr &&
         std::any_of(configured_.config->sources.begin(), configured_.config->sources.end(),
                     [type](const Trigger_Source& source) { return source.type == type; });
}

const trigger* Explainer::stored_record() const {
  return find(site_.stored(), id_);
}

const trigger* Explainer::refreshed_record() const {
  return find(site_.refreshed(), id_);
}

}  // namespace kuv::vemora::operations
