#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "vemora/embedded_server/persistent/inventory.h"

namespace kuv::test {

using namespace kuv::vemora;

/// A camera of the site in words.
struct Site_Camera {
  Site_Camera& named(std::string text);
  Site_Camera& with_tag(const std::string& tag, std::optional<std::string> value = std::nullopt);
  Site_Camera& without_tag(const std::string& tag);
  /// One of the ONVIF topics that the camera can send.
  Site_Camera& with_topic(const std::string& topic);
  Site_Camera& without_topic(const std::string& topic);
  /// A capability document as it is, in the place of one with the topics.
  Site_Camera& with_capabilities(std::string json);
  Site_Camera& detecting_objects(bool does = true);
  Site_Camera& detecting_motion(bool does = true);

  std::string name = "camera";
  Tag_Map tags;
  std::set<std::string> topics;
  std::optional<std::string> capabilities;
  bool object_detection = false;
  bool motion_detection = false;
};

/// A generic subscription of the site in words.
struct Site_Subscription {
  Site_Subscription& named(std::string text);
  Site_Subscription& with_tag(const std::string& tag,
                              std::optional<std::string> value = std::nullopt);
  Site_Subscription& without_tag(const std::string& tag);
  Site_Subscription& in_category(std::uint64_t id);
  Site_Subscription& on_camera(std::uint64_t id);

  std::string name = "subscription";
  Tag_Map tags;
  std::optional<std::uint64_t> category_id;
  std::set<std::uint64_t> camera_ids;
};

/// What a site has besides its triggers. Naming something again goes on with what was said of it:
///
///     site.given_camera(10).with_tag("site", "north").with_topic("tns1:VideoSource/MotionAlarm");
///     site.store_in(database);
///     site.given_camera(10).without_tag("site");
///     site.store_in(database);
class Site_Builder {
 public:
  Site_Camera& given_camera(std::uint64_t id) { return cameras_[id]; }
  Site_Subscription& given_generic_subscription(std::uint64_t id) { return subscriptions_[id]; }

  server& given_server(std::uint64_t id);
  schedule& given_schedule(std::uint64_t id, bool usable = true);
  metadata_event_category& given_category(std::uint64_t id, std::string name);
  /// A general object type and what it stands for.
  void given_object_type(const std::string& name, std::set<std::string> types);

  const std::map<std::uint64_t, Site_Camera>& cameras() const { return cameras_; }
  const std::map<std::uint64_t, Site_Subscription>& subscriptions() const { return subscriptions_; }
  const std::map<std::uint64_t, server>& servers() const { return servers_; }
  const std::map<std::uint64_t, schedule>& schedules() const { return schedules_; }

  embedded_server::Inventory inventory() const;
  void store_in(const std::shared_ptr<embedded_server::Database>& database) const;

 private:
  std::map<std::uint64_t, Site_Camera> cameras_;
  std::map<std::uint64_t, Site_Subscription> subscriptions_;
  std::map<std::uint64_t, server> servers_;
  std::map<std::uint64_t, schedule> schedules_;
  std::map<std::uint64_t, metadata_event_category> categories_;
  std::map<std::string, std::set<std::string>> object_types_;
};

/// A capability document of a camera that can send these topics.
std::string capabilities_with_topics(const std::set<std::string>& topics);

}  // namespace kuv::test
