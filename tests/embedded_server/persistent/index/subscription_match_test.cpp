// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/subscription_match.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "records-odb.h"

namespace kuv::vemora::embedded_server {
namespace {

using Record = metadata_event_subscription;
using Query = Subscription_Match::Query;
using Where = Query::Topics_And_Cameras;

std::shared_ptr<camera> a_camera(std::uint64_t id) {
  auto record = std::make_shared<camera>();
  record->id = id;
  return record;
}

/// With a camera and a topic, one of them, or neither.
Record a_record(std::optional<std::uint64_t> camera_id, std::optional<std::string> topic) {
  Record record;
  if (camera_id) {
    record.camera = a_camera(*camera_id);
  }
  record.onvif_topic = std::move(topic);
  return record;
}

std::vector<Record> all_records() {
  const std::vector<std::optional<std::uint64_t>> camera_ids{std::nullopt, 10, 11};
  const std::vector<std::optional<std::string>> topics{std::nullopt, "a", "b", ""};
  std::vector<Record> records;
  for (const auto& camera_id : camera_ids) {
    for (const auto& topic : topics) {
      records.push_back(a_record(camera_id, topic));
    }
  }
  return records;
}

std::vector<Query> all_queries() {
  const std::vector<std::vector<std::string>> topic_lists{{}, {"a"}, {"a", "b"}, {""}, {"c"}};
  const std::vector<std::vector<std::uint64_t>> camera_lists{{}, {10}, {10, 11}, {12}};
  std::vector<Query> queries;
  for (const auto& topics : topic_lists) {
    for (const auto& camera_ids : camera_lists) {
      Query query;
      query.topics = topics;
      for (const std::uint64_t id : camera_ids) {
        query.cameras.push_back(a_camera(id));
      }
      queries.push_back(query);
    }
  }
  return queries;
}

bool matches(Query query, Where where, const Record& record) {
  query.topics_and_cameras = where;
  return Subscription_Match(query)(record);
}

TEST(A_Subscription_Query, finds_outside_exactly_what_is_not_inside) {
  int inside = 0;
  int outside = 0;
  for (const Query& query : all_queries()) {
    for (const Record& record : all_records()) {
      const bool nothing_is_inside = query.topics.empty();
      const bool is_inside = !nothing_is_inside && matches(query, Where::matching, record);
      EXPECT_EQ(matches(query, Where::outside, record), !is_inside)
          << "camera " << (record.camera ? std::to_string(record.camera_id()) : "none")
          << ", topic " << record.onvif_topic.value_or("none") << "; " << query.topics.size()
          << " topics, " << query.cameras.size() << " cameras";
      ++(is_inside ? inside : outside);
    }
  }
  EXPECT_GT(inside, 20);
  EXPECT_GT(outside, 100);
}

TEST(A_Subscription_Query, asks_inside_for_a_topic_and_a_camera_where_some_are_named) {
  Query query;
  EXPECT_TRUE(matches(query, Where::matching, a_record({}, {})));
  query.topics = {"a"};
  EXPECT_TRUE(matches(query, Where::matching, a_record(10, "a")));
  EXPECT_TRUE(matches(query, Where::matching, a_record({}, "a")));
  EXPECT_FALSE(matches(query, Where::matching, a_record(10, "b")));
  EXPECT_FALSE(matches(query, Where::matching, a_record(10, {})));
  query.cameras = {a_camera(10)};
  EXPECT_TRUE(matches(query, Where::matching, a_record(10, "a")));
  EXPECT_FALSE(matches(query, Where::matching, a_record(11, "a")));
  EXPECT_FALSE(matches(query, Where::matching, a_record({}, "a")));
  query.topics.clear();
  EXPECT_TRUE(matches(query, Where::matching, a_record(10, {})));
}

TEST(A_Subscription_Query, knows_the_kinds_and_what_is_of_neither) {
  const std::vector<Record> records{a_record(10, "a"), a_record({}, {}), a_record(10, {}),
                                    a_record({}, "a")};
  const auto kinds_of = [&records](Query::Kind kind) {
    Query query;
    query.kind = kind;
    std::vector<bool> fitting;
    for (const Record& record : records) {
      fitting.push_back(Subscription_Match(query)(record));
    }
    return fitting;
  };
  EXPECT_THAT(kinds_of(Query::Kind::any), testing::ElementsAre(true, true, true, true));
  EXPECT_THAT(kinds_of(Query::Kind::topic), testing::ElementsAre(true, false, false, false));
  EXPECT_THAT(kinds_of(Query::Kind::generic), testing::ElementsAre(false, true, false, false));
}

TEST(A_Subscription_Query, finds_by_tags_what_satisfies_one_of_its_terms) {
  Record record = a_record({}, {});
  record.tags = {{"door", {"main"}}, {"site", {std::nullopt}}};
  const auto fits = [&record](std::set<ODB_Utils::Tag_Search_Term> terms, Query::Tags match) {
    Query query;
    query.tags = std::move(terms);
    query.tags_match = match;
    return Subscription_Match(query)(record);
  };
  for (const auto& [terms, satisfied] :
       std::vector<std::pair<std::set<ODB_Utils::Tag_Search_Term>, bool>>{
           {{}, true},
           {{{"door", "main"}}, true},
           {{{"door", std::nullopt}}, true},
           {{{"site", std::nullopt}}, true},
           {{{"door", "side"}, {"site", std::nullopt}}, true},
           {{{"door", "side"}}, false},
           {{{"site", "main"}}, false},
           {{{"gate", std::nullopt}}, false}}) {
    EXPECT_EQ(fits(terms, Query::Tags::matching), satisfied);
    EXPECT_EQ(fits(terms, Query::Tags::not_matching), !satisfied);
  }
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
