// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/subscription_match.h"

#include <algorithm>

#include "vemora/platform/tags/tag_filter.h"

namespace kuv::vemora::embedded_server {

using Query = Subscription_Match::Query;

namespace {

constexpr std::size_t few = 4;  // topics that are compared faster than searched

}  // namespace

Subscription_Match::Subscription_Match(const Query& query) : query_(query) {
  if (query.topics.size() > few) {
    topics_.insert(query.topics.begin(), query.topics.end());
  }
  camera_ids_.reserve(query.cameras.size());
  for (const std::shared_ptr<camera>& wanted : query.cameras) {
    camera_ids_.insert(wanted->id);
  }
}

bool Subscription_Match::operator()(const metadata_event_subscription& record) const {
  return kind_fits(record) && topics_and_cameras_fit(record) && tags_fit(record);
}

bool Subscription_Match::kind_fits(const metadata_event_subscription& record) const {
  switch (query_.kind) {
    case Query::Kind::topic:
      return is_topic_kind(record);
    case Query::Kind::generic:
      return is_generic(record);
    case Query::Kind::any:
      break;
  }
  return true;
}

bool Subscription_Match::topics_and_cameras_fit(const metadata_event_subscription& record) const {
  const bool on_topic = on_one_of_the_topics(record);
  const bool on_camera = camera_ids_.empty() || on_one_of_the_cameras(record);
  if (query_.topics_and_cameras == Query::Topics_And_Cameras::matching) {
    return (query_.topics.empty() || on_topic) && on_camera;
  }
  return !(on_topic && on_camera);
}

bool Subscription_Match::tags_fit(const metadata_event_subscription& record) const {
  const auto is_satisfied = [&record](const ODB_Utils::Tag_Search_Term& term) {
    return std::any_of(record.tags.begin(), record.tags.end(), [&term](const Tag_Entry& tag) {
      return tag.name == term.name && Tag_Filter::satisfies(tag.info, term);
    });
  };
  const bool matches =
      query_.tags.empty() || std::any_of(query_.tags.begin(), query_.tags.end(), is_satisfied);
  return matches == (query_.tags_match == Query::Tags::matching);
}

bool Subscription_Match::on_one_of_the_topics(const metadata_event_subscription& record) const {
  if (!record.onvif_topic) {
    return false;
  }
  const std::vector<std::string>& topics = query_.topics;
  return topics.size() > few
             ? topics_.count(*record.onvif_topic) != 0
             : std::find(topics.begin(), topics.end(), *record.onvif_topic) != topics.end();
}

bool Subscription_Match::on_one_of_the_cameras(const metadata_event_subscription& record) const {
  return record.camera && camera_ids_.count(record.camera_id()) != 0;
}

}  // namespace kuv::vemora::embedded_server
