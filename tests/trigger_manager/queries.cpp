// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/queries.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kuv::test {
namespace {

std::string id_of(const Trigger_Record& record) {
  return record ? std::to_string(record->id) : "nobody";
}

const char* name_of(Subscription_Query::Kind kind) {
  switch (kind) {
    case Subscription_Query::Kind::any:
      return "any";
    case Subscription_Query::Kind::topic:
      return "topic";
    case Subscription_Query::Kind::generic:
      return "generic";
  }
  return "?";
}

}  // namespace

std::vector<std::uint64_t> ids_of(const Cameras& cameras) {
  std::vector<std::uint64_t> ids;
  for (const Camera_Record& record : cameras) {
    ids.push_back(record->id);
  }
  return ids;
}

std::vector<std::string> texts_of(const Terms& terms) {
  std::vector<std::string> texts;
  for (const auto& term : terms) {
    texts.push_back(term.value ? term.name + "=" + *term.value : term.name);
  }
  return texts;
}

std::string describe(const Subscription_Query& query) {
  using Match = Subscription_Query::Trigger_Match;
  using Area = Subscription_Query::Topics_And_Cameras;
  using Tags = Subscription_Query::Tags;
  return fmt::format(
      "{} subscriptions {} {} {} topics {} cameras {} {} tags {}", name_of(query.kind),
      query.trigger_match == Match::holding ? "holding" : "lacking", id_of(query.trigger),
      query.topics_and_cameras == Area::matching ? "matching" : "outside", query.topics,
      ids_of(query.cameras), query.tags_match == Tags::matching ? "matching" : "not matching",
      texts_of(query.tags));
}

std::string describe(const ETA_Query& query) {
  return fmt::format("maps holding {} {} cameras {}", id_of(query.trigger),
                     query.cameras_match == ETA_Query::Cameras::matching ? "matching" : "outside",
                     ids_of(query.cameras));
}

Subscription_Query subscriptions_holding(const Trigger_Record& record) {
  Subscription_Query query;
  query.trigger = record;
  query.trigger_match = Subscription_Query::Trigger_Match::holding;
  query.kind = Subscription_Query::Kind::any;
  query.topics_and_cameras = Subscription_Query::Topics_And_Cameras::matching;
  query.tags_match = Subscription_Query::Tags::matching;
  return query;
}

Subscription_Query topic_subscriptions_lacking(const Trigger_Record& record,
                                               std::vector<std::string> topics, Cameras cameras) {
  Subscription_Query query = subscriptions_holding(record);
  query.trigger_match = Subscription_Query::Trigger_Match::lacking;
  query.kind = Subscription_Query::Kind::topic;
  query.topics = std::move(topics);
  query.cameras = std::move(cameras);
  return query;
}

Subscription_Query subscriptions_holding_outside(const Trigger_Record& record,
                                                 std::vector<std::string> topics, Cameras cameras) {
  Subscription_Query query = subscriptions_holding(record);
  query.topics_and_cameras = Subscription_Query::Topics_And_Cameras::outside;
  query.topics = std::move(topics);
  query.cameras = std::move(cameras);
  return query;
}

Subscription_Query generic_subscriptions_holding(const Trigger_Record& record) {
  Subscription_Query query = subscriptions_holding(record);
  query.kind = Subscription_Query::Kind::generic;
  return query;
}

Subscription_Query generic_subscriptions_lacking(const Trigger_Record& record, Terms filter) {
  Subscription_Query query = generic_subscriptions_holding(record);
  query.trigger_match = Subscription_Query::Trigger_Match::lacking;
  query.tags = std::move(filter);
  return query;
}

Subscription_Query generic_subscriptions_holding_against(const Trigger_Record& record,
                                                         Terms filter) {
  Subscription_Query query = generic_subscriptions_holding(record);
  query.tags = std::move(filter);
  query.tags_match = Subscription_Query::Tags::not_matching;
  return query;
}

ETA_Query maps_holding(const Trigger_Record& record) {
  ETA_Query query;
  query.trigger = record;
  query.cameras_match = ETA_Query::Cameras::matching;
  return query;
}

ETA_Query maps_holding_outside(const Trigger_Record& record, Cameras cameras) {
  ETA_Query query = maps_holding(record);
  query.cameras = std::move(cameras);
  query.cameras_match = ETA_Query::Cameras::outside;
  return query;
}

}  // namespace kuv::test
