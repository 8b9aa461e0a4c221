// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <unordered_set>

#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::vemora::embedded_server {

/// With a camera and a topic.
inline bool is_topic_kind(const metadata_event_subscription& record) {
  return record.camera && record.onvif_topic;
}

/// With neither. What has one of the two is corrupt and of no kind: triggers only ever leave it,
/// and no clean-up deletes it. A camera without a topic fails each pass that reads it back, until
/// somebody has looked at it.
inline bool is_generic(const metadata_event_subscription& record) {
  return !record.camera && !record.onvif_topic;
}

/// Everything that a subscription query asks for, but for who holds or lacks the trigger.
class Subscription_Match {
 public:
  using Query = Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

  explicit Subscription_Match(const Query& query);

  bool operator()(const metadata_event_subscription& record) const;

 private:
  bool kind_fits(const metadata_event_subscription& record) const;
  bool topics_and_cameras_fit(const metadata_event_subscription& record) const;
  bool tags_fit(const metadata_event_subscription& record) const;
  bool on_one_of_the_topics(const metadata_event_subscription& record) const;
  bool on_one_of_the_cameras(const metadata_event_subscription& record) const;

  const Query& query_;
  std::set<std::string> topics_;  ///< where there are many
  std::unordered_set<std::uint64_t, Id_Hash> camera_ids_;
};

}  // namespace kuv::vemora::embedded_server
