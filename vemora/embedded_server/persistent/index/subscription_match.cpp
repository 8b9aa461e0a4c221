#include "vemora/embedded_server/persistent/index/subscription_match.h"

#include <algorithm>

namespace kuv::vemora::embedded_server {

using Query = Subscription_Match::Query;

Subscription_Match::Subscription_Match(const Query& query)
    : query_(query), topics_(query.topics.begin(), query.topics.end()) {
  camera_ids_.reserve(query.cameras.size());
  for (const std::shared_ptr<camera>& wanted : query.cameras) {
    camera_ids_.insert(wanted->id);
  }
}

bool Subscription_Match::operator()(const metadata_event_subscription& record) const {
  return kind_fits(record) && place_fits(record) && tags_fit(record);
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

bool Subscription_Match::place_fits(const metadata_event_subscription& record) const {
  if (query_.topics_and_cameras == Query::Topics_And_Cameras::matching) {
    return (topics_.empty() || on_one_of_the_topics(record)) &&
           (camera_ids_.empty() || on_one_of_the_cameras(record));
  }
  if (topics_.empty()) {
    return true;  // nothing lies inside
  }
  return is_topic_kind(record) && (!on_one_of_the_topics(record) ||
                                   (!camera_ids_.empty() && !on_one_of_the_cameras(record)));
}

bool Subscription_Match::tags_fit(const metadata_event_subscription& record) const {
  const auto satisfied = [&record](const ODB_Utils::Tag_Search_Term& term) {
    return std::any_of(record.tags.begin(), record.tags.end(), [&term](const Tag_Entry& tag) {
      return tag.name == term.name && (!term.value || tag.info.value == term.value);
    });
  };
  const bool matches =
      query_.tags.empty() || std::any_of(query_.tags.begin(), query_.tags.end(), satisfied);
  return matches == (query_.tags_match == Query::Tags::matching);
}

bool Subscription_Match::on_one_of_the_topics(const metadata_event_subscription& record) const {
  return record.onvif_topic && topics_.count(*record.onvif_topic) != 0;
}

bool Subscription_Match::on_one_of_the_cameras(const metadata_event_subscription& record) const {
  return record.camera && camera_ids_.count(record.camera_id()) != 0;
}

}  // namespace kuv::vemora::embedded_server
