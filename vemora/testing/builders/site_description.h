// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/schedule.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::test {

using namespace kuv::vemora;

/// A camera of the site in words.
struct Site_Camera {
  Site_Camera& named(std::string text) {
    name = std::move(text);
    return *this;
  }
  Site_Camera& with_tag(const std::string& tag, std::optional<std::string> value = std::nullopt) {
    tags[tag].value = std::move(value);
    return *this;
  }
  Site_Camera& without_tag(const std::string& tag) {
    tags.erase(tag);
    return *this;
  }
  /// One of the ONVIF topics that the camera can send.
  Site_Camera& with_topic(const std::string& topic) {
    topics.insert(topic);
    return *this;
  }
  Site_Camera& without_topic(const std::string& topic) {
    topics.erase(topic);
    return *this;
  }
  Site_Camera& detecting_objects(bool does = true) {
    object_detection = does;
    return *this;
  }
  Site_Camera& detecting_motion(bool does = true) {
    motion_detection = does;
    return *this;
  }
  /// A capability document as it is, in the place of one with the topics. The contract suite
  /// describes cameras by their topics alone.
  Site_Camera& with_capabilities(std::string json) {
    capabilities = std::move(json);
    return *this;
  }

  std::string name = "camera";
  Tag_Map tags;
  std::set<std::string> topics;
  std::optional<std::string> capabilities;
  bool object_detection = false;
  bool motion_detection = false;
};

/// A generic subscription of the site in words.
struct Site_Subscription {
  Site_Subscription& named(std::string text) {
    name = std::move(text);
    return *this;
  }
  Site_Subscription& with_tag(const std::string& tag,
                              std::optional<std::string> value = std::nullopt) {
    tags[tag].value = std::move(value);
    return *this;
  }
  Site_Subscription& without_tag(const std::string& tag) {
    tags.erase(tag);
    return *this;
  }
  Site_Subscription& in_category(std::uint64_t id) {
    category_id = id;
    return *this;
  }
  Site_Subscription& on_camera(std::uint64_t id) {
    camera_ids.insert(id);
    return *this;
  }

  std::string name = "subscription";
  Tag_Map tags;
  std::optional<std::uint64_t> category_id;
  std::set<std::uint64_t> camera_ids;  ///< its further cameras, in ascending order
};

/// What a site has besides its triggers, by id. Naming something again goes on with what was said
/// of it:
///
///     Site_Description site;
///     site.given_camera(10).with_tag("site", "north").with_topic("tns1:VideoSource/MotionAlarm");
///     site.given_schedule(1).name = "office hours";
class Site_Description {
 public:
  Site_Camera& given_camera(std::uint64_t id) { return cameras_[id]; }
  Site_Subscription& given_generic_subscription(std::uint64_t id) { return subscriptions_[id]; }
  server& given_server(std::uint64_t id) { return of_id(servers_, id); }
  schedule& given_schedule(std::uint64_t id, bool usable = true) {
    schedule& record = of_id(schedules_, id);
    record.usable = usable;
    return record;
  }
  metadata_event_category& given_category(std::uint64_t id, std::string name) {
    metadata_event_category& record = of_id(categories_, id);
    record.name = std::move(name);
    return record;
  }

  const std::map<std::uint64_t, Site_Camera>& cameras() const { return cameras_; }
  const std::map<std::uint64_t, Site_Subscription>& subscriptions() const { return subscriptions_; }
  const std::map<std::uint64_t, server>& servers() const { return servers_; }
  const std::map<std::uint64_t, schedule>& schedules() const { return schedules_; }
  const std::map<std::uint64_t, metadata_event_category>& categories() const { return categories_; }

 private:
  template <class Record>
  static Record& of_id(std::map<std::uint64_t, Record>& records, std::uint64_t id) {
    Record& record = records[id];
    record.id = id;
    return record;
  }

  std::map<std::uint64_t, Site_Camera> cameras_;
  std::map<std::uint64_t, Site_Subscription> subscriptions_;
  std::map<std::uint64_t, server> servers_;
  std::map<std::uint64_t, schedule> schedules_;
  std::map<std::uint64_t, metadata_event_category> categories_;
};

}  // namespace kuv::test
