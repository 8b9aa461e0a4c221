#include "embedded_server/persistent/plain_model.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace kuv::test {
namespace {

using Ids = Plain_Model::Ids;
using Subscription_Query = Plain_Model::Subscription_Query;

bool satisfied(const Tag_Map& tags, const Plain_Model::Terms& terms) {
  if (terms.empty()) {
    return true;
  }
  for (const auto& term : terms) {
    for (const auto& [name, info] : tags) {
      if (name == term.name && (!term.value.has_value() || info.value == term.value)) {
        return true;
      }
    }
  }
  return false;
}

bool lists_topic(const Subscription_Query& query, const Plain_Model::Subscription& record) {
  for (const std::string& topic : query.topics) {
    if (record.topic.has_value() && *record.topic == topic) {
      return true;
    }
  }
  return false;
}

template <class Query_Type>
bool lists_camera(const Query_Type& query, std::optional<std::uint64_t> camera_id) {
  for (const std::shared_ptr<camera>& listed : query.cameras) {
    if (camera_id.has_value() && listed->id == *camera_id) {
      return true;
    }
  }
  return false;
}

bool trigger_fits(const Subscription_Query& query, const Plain_Model::Subscription& record) {
  if (!query.trigger) {
    return true;
  }
  const bool holds = record.trigger_ids.count(query.trigger->id) == 1;
  return query.trigger_match == Subscription_Query::Trigger_Match::holding ? holds : !holds;
}

bool is_topic_kind(const Plain_Model::Subscription& record) {
  return record.camera_id.has_value() && record.topic.has_value();
}

bool kind_fits(const Subscription_Query& query, const Plain_Model::Subscription& record) {
  switch (query.kind) {
    case Subscription_Query::Kind::any:
      return true;
    case Subscription_Query::Kind::topic:
      return is_topic_kind(record);
    case Subscription_Query::Kind::generic:
      return !record.camera_id.has_value() && !record.topic.has_value();
  }
  return false;
}

bool topics_and_cameras_fit(const Subscription_Query& query,
                            const Plain_Model::Subscription& record) {
  const bool on_topic = lists_topic(query, record);
  const bool on_camera = query.cameras.empty() || lists_camera(query, record.camera_id);
  if (query.topics_and_cameras == Subscription_Query::Topics_And_Cameras::matching) {
    return (query.topics.empty() || on_topic) && on_camera;
  }
  return !(on_topic && on_camera);
}

bool tags_fit(const Subscription_Query& query, const Plain_Model::Subscription& record) {
  const bool match = satisfied(record.tags, query.tags);
  return query.tags_match == Subscription_Query::Tags::matching ? match : !match;
}

std::string line_of(std::uint64_t id, const Plain_Model::Subscription& record) {
  std::vector<std::string> tags;
  for (const auto& [name, info] : record.tags) {
    tags.push_back(name + (info.value ? '=' + *info.value : ""));
  }
  return fmt::format(
      "subscription {} \"{}\" camera {} topic {} category none tags [{}] cameras [] triggers [{}]",
      id, record.name, record.camera_id ? std::to_string(*record.camera_id) : "none",
      record.topic ? '"' + *record.topic + '"' : "none", fmt::join(tags, " "),
      fmt::join(record.trigger_ids, " "));
}

std::string line_of(std::uint64_t id, const Plain_Model::Detection& record) {
  return fmt::format("detection {} camera {} triggers [{}]", id, record.camera_id,
                     fmt::join(record.trigger_ids, " "));
}

Ids trigger_ids_of(const metadata_event_subscription& record) {
  const auto ids = record.trigger_ids();
  return {ids.begin(), ids.end()};
}

Ids trigger_ids_of(const eta_camera& record) {
  Ids ids;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.insert(held->id);
  }
  return ids;
}

template <class Records, class Wanted>
std::vector<std::string> texts_of_those(const Records& records, Wanted wanted) {
  std::vector<std::string> texts;
  for (const auto& [id, record] : records) {
    if (wanted(record)) {
      texts.push_back(line_of(id, record));
    }
  }
  return texts;
}

template <class Wanted>
std::vector<std::uint64_t> cameras_of(const Site_Builder& site, const Ids& candidates,
                                      Wanted wanted) {
  std::vector<std::uint64_t> ids;
  for (const auto& [id, record] : site.cameras()) {
    if ((candidates.empty() || candidates.count(id) == 1) && wanted(id, record)) {
      ids.push_back(id);
    }
  }
  return ids;
}

}  // namespace

Plain_Model::Plain_Model(const Site_Builder& site) : site_(site) {
  for (const auto& [id, record] : site.subscriptions()) {
    subscriptions[id] = {record.name, std::nullopt, std::nullopt, record.tags, {}};
  }
}

bool Plain_Model::add_trigger(const trigger& added) {
  return trigger_names.emplace(added.id, added.name).second;
}

bool Plain_Model::update_trigger(const trigger& changed) {
  if (trigger_names.count(changed.id) == 0) {
    return false;
  }
  trigger_names[changed.id] = changed.name;
  return true;
}

bool Plain_Model::all_stored(const Ids& trigger_ids) const {
  return std::all_of(trigger_ids.begin(), trigger_ids.end(),
                     [this](std::uint64_t id) { return trigger_names.count(id) == 1; });
}

bool Plain_Model::may_add(const metadata_event_subscription& added) const {
  for (const auto& [id, record] : subscriptions) {
    if (record.camera_id == added.camera_id() && record.topic == added.onvif_topic) {
      return false;
    }
  }
  return site_.cameras().count(added.camera_id()) == 1 && all_stored(trigger_ids_of(added));
}

bool Plain_Model::may_add(const eta_camera& added) const {
  for (const auto& [id, record] : detections) {
    if (record.camera_id == added.camera_id()) {
      return false;
    }
  }
  return site_.cameras().count(added.camera_id()) == 1 && all_stored(trigger_ids_of(added));
}

void Plain_Model::add(const metadata_event_subscription& added) {
  subscriptions[added.id] = {
      added.name, added.camera_id(), added.onvif_topic, {}, trigger_ids_of(added)};
}

void Plain_Model::add(const eta_camera& added) {
  detections[added.id] = {added.camera_id(), trigger_ids_of(added)};
}

bool Plain_Model::change_links(Ids& trigger_ids, const Trigger_Link_Changes& changes) const {
  if (!all_stored({changes.added.begin(), changes.added.end()})) {
    return false;
  }
  trigger_ids.insert(changes.added.begin(), changes.added.end());
  for (const std::uint64_t id : changes.removed) {
    trigger_ids.erase(id);
  }
  return true;
}

bool Plain_Model::update(std::uint64_t subscription_id, const Trigger_Link_Changes& changes) {
  const auto found = subscriptions.find(subscription_id);
  return found != subscriptions.end() && change_links(found->second.trigger_ids, changes);
}

bool Plain_Model::update_detection(std::uint64_t id, const Trigger_Link_Changes& changes) {
  const auto found = detections.find(id);
  return found != detections.end() && change_links(found->second.trigger_ids, changes);
}

void Plain_Model::delete_triggers_except(const Ids& kept) {
  Ids dead;
  for (const auto& [id, name] : trigger_names) {
    if (kept.count(id) == 0) {
      dead.insert(id);
    }
  }
  for (const std::uint64_t id : dead) {
    trigger_names.erase(id);
    for (auto& [subscription_id, record] : subscriptions) {
      record.trigger_ids.erase(id);
    }
    for (auto& [detection_id, record] : detections) {
      record.trigger_ids.erase(id);
    }
  }
}

void Plain_Model::delete_stale_subscriptions() {
  for (auto place = subscriptions.begin(); place != subscriptions.end();) {
    const bool goes = is_topic_kind(place->second) && place->second.trigger_ids.empty();
    place = goes ? subscriptions.erase(place) : std::next(place);
  }
}

void Plain_Model::delete_stale_detections() {
  for (auto place = detections.begin(); place != detections.end();) {
    place = place->second.trigger_ids.empty() ? detections.erase(place) : std::next(place);
  }
}

std::vector<std::string> Plain_Model::answer(const Subscription_Query& query) const {
  return texts_of_those(subscriptions, [&query](const Subscription& record) {
    return trigger_fits(query, record) && kind_fits(query, record) &&
           topics_and_cameras_fit(query, record) && tags_fit(query, record);
  });
}

std::vector<std::string> Plain_Model::answer(const Detection_Query& query) const {
  return texts_of_those(detections, [&query](const Detection& record) {
    if (query.trigger && record.trigger_ids.count(query.trigger->id) == 0) {
      return false;
    }
    const bool listed = lists_camera(query, record.camera_id);
    return query.cameras.empty() ||
           (query.cameras_match == Detection_Query::Cameras::matching ? listed : !listed);
  });
}

std::vector<std::string> Plain_Model::stale(const Ids& live) const {
  return texts_of_those(subscriptions, [&live](const Subscription& record) {
    const bool holds_live = std::any_of(record.trigger_ids.begin(), record.trigger_ids.end(),
                                        [&live](std::uint64_t id) { return live.count(id) == 1; });
    return live.empty() || (is_topic_kind(record) && !holds_live);
  });
}

std::vector<std::uint64_t> Plain_Model::cameras_matching(const Terms& terms) const {
  return cameras_of(site_, {}, [&terms](std::uint64_t, const Site_Camera& record) {
    return satisfied(record.tags, terms);
  });
}

std::vector<std::uint64_t> Plain_Model::cameras_needing(const std::string& topic,
                                                        const Ids& candidates) const {
  return cameras_of(site_, candidates, [&](std::uint64_t camera_id, const Site_Camera&) {
    return std::none_of(subscriptions.begin(), subscriptions.end(), [&](const auto& entry) {
      return entry.second.camera_id == camera_id && entry.second.topic == topic;
    });
  });
}

std::vector<std::uint64_t> Plain_Model::object_detection_cameras(const Ids& candidates) const {
  return cameras_of(site_, candidates, [](std::uint64_t, const Site_Camera& record) {
    return record.object_detection;
  });
}

std::vector<std::uint64_t> Plain_Model::motion_detection_cameras(const Ids& candidates) const {
  return cameras_of(site_, candidates, [](std::uint64_t, const Site_Camera& record) {
    return record.motion_detection;
  });
}

}  // namespace kuv::test
