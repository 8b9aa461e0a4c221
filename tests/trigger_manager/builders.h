// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/stub_platform/camera_link.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::test {

using namespace kuv::vemora;

using Terms = std::set<ODB_Utils::Tag_Search_Term>;
using Trigger_Record = std::shared_ptr<trigger>;
using Camera_Record = std::shared_ptr<camera>;
using Cameras = std::vector<Camera_Record>;
using Subscription_Record = std::shared_ptr<metadata_event_subscription>;
using Subscriptions = std::vector<Subscription_Record>;
using ETA_Record = std::shared_ptr<eta_camera>;
using ETA_Records = std::vector<ETA_Record>;

inline const Terms north{{"site", "north"}};

// Sources of triggers.

inline Trigger_Source onvif(const std::string& topic) {
  Trigger_Source source;
  source.type = Trigger_Source_Type::onvif_metadata;
  source.onvif_topic = topic;
  return source;
}

inline Trigger_Source generic_events() {
  Trigger_Source source;
  source.type = Trigger_Source_Type::metadata_event;
  return source;
}

inline Trigger_Source object_detection(const std::string& type, bool motion_required = false) {
  Trigger_Source source;
  source.type = Trigger_Source_Type::object_detection;
  source.search_item = Object_Search_Item{type, motion_required};
  return source;
}

inline Trigger_Source motion_detection() {
  Trigger_Source source;
  source.type = Trigger_Source_Type::motion_detection;
  return source;
}

inline Trigger_Source with_duration(Trigger_Source source, Activity_Duration_Mode mode,
                                    std::chrono::milliseconds least,
                                    std::chrono::milliseconds dropout) {
  source.activity_duration = Activity_Duration{mode, least, dropout};
  return source;
}

inline std::set<Trigger_Mapping_Entry> schedules(std::initializer_list<std::uint64_t> ids) {
  std::set<Trigger_Mapping_Entry> entries;
  for (const std::uint64_t id : ids) {
    entries.insert({std::make_shared<schedule>(schedule{id, "schedule", true})});
  }
  return entries;
}

/// A trigger as the parser hands it on.
class Trigger_Builder {
 public:
  explicit Trigger_Builder(std::uint64_t id) {
    config_.id = id;
    config_.name = "trigger " + std::to_string(id);
    config_.matches_server = true;
  }

  Trigger_Builder& named(std::string name) {
    config_.name = std::move(name);
    return *this;
  }
  Trigger_Builder& with(Trigger_Source source) {
    config_.sources.insert(std::move(source));
    return *this;
  }
  Trigger_Builder& scheduled_by(std::initializer_list<std::uint64_t> ids) {
    config_.schedules = schedules(ids);
    return *this;
  }
  Trigger_Builder& for_servers(Terms terms) {
    config_.tags.server = std::move(terms);
    return *this;
  }
  Trigger_Builder& for_cameras(Terms terms) {
    config_.tags.camera = std::move(terms);
    return *this;
  }
  Trigger_Builder& for_subscriptions(Terms terms) {
    config_.tags.event_subscription = std::move(terms);
    return *this;
  }
  Trigger_Builder& at_any_time() {
    config_.options.any_time = true;
    return *this;
  }
  Trigger_Builder& of_another_server() {
    config_.matches_server = false;
    return *this;
  }
  Trigger_Builder& without_valid_schedule() {
    config_.schedule_invalid = true;
    return *this;
  }

  operator Trigger_Config() const { return config_; }

 private:
  Trigger_Config config_;
};

inline Trigger_Builder an_active_trigger(std::uint64_t id) {
  return Trigger_Builder(id);
}

inline Trigger_Builder an_inactive_trigger(std::uint64_t id) {
  return Trigger_Builder(id).of_another_server();
}

/// The record that the database holds after the trigger was applied.
inline Trigger_Record stored(const Trigger_Config& config) {
  return std::make_shared<trigger>(
      trigger{config.id, config.name, config.schedules, config.sources});
}

/// Where a capability document lists the topics that a camera can send.
inline const char* const topic_filter_path =
    "Metadata.Mode.capabilities.On.TopicFilter.capabilities";

inline Camera_Record a_camera(std::uint64_t id) {
  auto record = std::make_shared<camera>();
  record->id = id;
  return record;
}

inline Camera_Record a_camera_with(std::uint64_t id, boost::property_tree::ptree document) {
  auto record = a_camera(id);
  record->capabilities =
      Capability_Document(std::make_shared<const boost::property_tree::ptree>(std::move(document)));
  return record;
}

inline Camera_Record a_camera_sending(std::uint64_t id, std::initializer_list<const char*> topics) {
  boost::property_tree::ptree supported;
  for (const char* topic : topics) {
    supported.push_back({topic, {}});
  }
  boost::property_tree::ptree document;
  document.put_child(topic_filter_path, supported);
  return a_camera_with(id, std::move(document));
}

// Defined elsewhere: inlined, they make the optimiser believe that ODB's links are read before they
// are set.

Subscription_Record a_generic_subscription(std::uint64_t id,
                                           std::initializer_list<Trigger_Record> held = {});

Subscription_Record a_topic_subscription(std::uint64_t id, odb::lazy_shared_ptr<camera> link,
                                         std::optional<std::string> topic,
                                         std::initializer_list<Trigger_Record> held = {});

ETA_Record an_eta_camera(std::uint64_t id, odb::lazy_shared_ptr<camera> link,
                         std::initializer_list<Trigger_Record> held = {});

}  // namespace kuv::test
