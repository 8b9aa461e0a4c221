// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/scripted_site.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <map>
#include <utility>

#include "support/json.h"
#include "trigger_manager/queries.h"
#include "vemora/platform/logging/severity.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {
namespace {

constexpr std::uint64_t this_server = 1;
const char* const topic = "tns1:A";

Cameras some_cameras(std::initializer_list<std::uint64_t> ids) {
  Cameras cameras;
  for (const std::uint64_t id : ids) {
    cameras.push_back(a_camera(id));
  }
  return cameras;
}

Trigger_Record a_record_of(std::uint64_t id) {
  return stored(an_active_trigger(id));
}

struct Scripted_Cameras : Camera_Repository {
  explicit Scripted_Cameras(Scripted_Site& owner) : site(owner) {}

  Camera_List get_cameras_matching_tags(const Terms& terms) override {
    if (site.refuses(fmt::format("cameras matching tags {}", texts_of(terms)))) {
      return {};
    }
    return terms.begin()->name == "area" ? some_cameras({10, 11, 12}) : Camera_List();
  }

  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    if (site.refuses(
            fmt::format("cameras {} needing a subscription to {}", ids_of(cameras), onvif_topic))) {
      return {};
    }
    return {a_camera_sending(10, {topic}), a_camera(11)};
  }

  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    if (site.refuses(fmt::format("object-detection cameras of {}", ids_of(cameras)))) {
      return {};
    }
    return some_cameras({10, 11});
  }

  Camera_List get_motion_detection_cameras(const Camera_List& cameras) override {
    if (site.refuses(fmt::format("motion-detection cameras of {}", ids_of(cameras)))) {
      return {};
    }
    return some_cameras({12});
  }

  Scripted_Site& site;
};

struct Scripted_Servers : Server_Repository {
  explicit Scripted_Servers(Scripted_Site& owner) : site(owner) {}

  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    if (site.refuses(fmt::format("server {}", id))) {
      return nullptr;
    }
    return std::make_shared<server>(server{id, "server", {{"site", {"north"}}}});
  }

  Scripted_Site& site;
};

struct Scripted_Categories : Metadata_Event_Category_Repository {
  explicit Scripted_Categories(Scripted_Site& owner) : site(owner) {}

  std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) override {
    site.refuses(fmt::format("category {}", name));
    return nullptr;
  }

  Scripted_Site& site;
};

struct Scripted_Subscriptions : Metadata_Event_Subscription_Repository {
  explicit Scripted_Subscriptions(Scripted_Site& owner) : site(owner) {}

  bool add(const std::shared_ptr<metadata_event_subscription>& added) override {
    return !site.refuses(fmt::format("add subscription to {}", *added->onvif_topic));
  }

  bool update(const std::shared_ptr<metadata_event_subscription>& changed) override {
    return !site.refuses(fmt::format("update subscription {}", changed->id));
  }

  Subscription_List Get_Matching_Subscriptions(
      const Get_Matching_Subscriptions_Params& params) override {
    const std::string query = describe(params);
    return site.refuses(query) ? Subscription_List() : answer(query);
  }

  Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) override {
    if (site.refuses(fmt::format("subscriptions without {}", live_trigger_ids))) {
      return {};
    }
    if (!live_trigger_ids.empty()) {
      return {a_topic_subscription(20, a_camera(16), "tns1:Stale"), a_generic_subscription(21)};
    }
    return {a_topic_subscription(30, a_camera(10), topic, {a_record_of(7)}),
            a_generic_subscription(31, {a_record_of(7), a_record_of(8)})};
  }

  void delete_stale() override { site.refuses("delete stale subscriptions"); }

  static Subscription_List answer(const std::string& query) {
    const Trigger_Record seven = a_record_of(7);
    const Trigger_Record nine = a_record_of(9);
    const Trigger_Record ten = a_record_of(10);
    const std::map<std::string, Subscription_List> script{
        {"topic subscriptions lacking 7 matching topics [\"tns1:A\"] cameras [10, 11, 12] matching "
         "tags []",
         {a_topic_subscription(2, a_camera(12), topic)}},
        {"any subscriptions holding 7 outside topics [\"tns1:A\"] cameras [10, 11, 12] matching "
         "tags []",
         {a_topic_subscription(3, a_camera(13), "tns1:B", {seven})}},
        {"generic subscriptions lacking 7 matching topics [] cameras [] matching tags "
         "[\"door=main\"]",
         {a_generic_subscription(4)}},
        {"generic subscriptions holding 7 matching topics [] cameras [] not matching tags "
         "[\"door=main\"]",
         {a_generic_subscription(5, {seven})}},
        {"any subscriptions holding 9 matching topics [] cameras [] matching tags []",
         {a_topic_subscription(6, a_camera(14), "tns1:C", {nine})}},
        {"any subscriptions holding 10 matching topics [] cameras [] matching tags []",
         {a_topic_subscription(7, a_camera(15), "tns1:D", {ten})}},
    };
    const auto found = script.find(query);
    return found == script.end() ? Subscription_List() : found->second;
  }

  Scripted_Site& site;
};

struct Scripted_Triggers : Trigger_Repository {
  explicit Scripted_Triggers(Scripted_Site& owner) : site(owner) {}

  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    const bool refused = site.refuses(fmt::format("find trigger {}", id));
    return refused || id == 7 ? nullptr : a_record_of(id);
  }

  bool add(const std::shared_ptr<trigger>& added) override {
    return !site.refuses(fmt::format("add trigger {}", added->id));
  }

  bool update(const std::shared_ptr<trigger>& changed) override {
    return !site.refuses(fmt::format("update trigger {}", changed->id));
  }

  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    site.refuses(fmt::format("delete all triggers except {}", kept));
  }

  void delete_all() override { site.refuses("delete all triggers"); }

  Scripted_Site& site;
};

struct Scripted_Schedules : Schedule_Repository {
  explicit Scripted_Schedules(Scripted_Site& owner) : site(owner) {}

  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override {
    if (site.refuses(fmt::format("schedule {}", id))) {
      return nullptr;
    }
    return std::make_shared<schedule>(schedule{id, "schedule", true});
  }

  Scripted_Site& site;
};

struct Scripted_ETA_Cameras : ETA_Camera_Repository {
  explicit Scripted_ETA_Cameras(Scripted_Site& owner) : site(owner) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    const bool refused = site.refuses(fmt::format("map of camera {}", camera_id));
    return refused || camera_id == 10 ? nullptr
                                      : an_eta_camera(camera_id + 100, a_camera(camera_id));
  }

  bool add(const std::shared_ptr<eta_camera>& /*added*/) override {
    return !site.refuses("add map");
  }

  bool update(const std::shared_ptr<eta_camera>& changed) override {
    return !site.refuses(fmt::format("update map {}", changed->id));
  }

  Record_List get(const Get_Params& params) override {
    const std::string query = describe(params);
    return site.refuses(query) ? Record_List() : answer(query);
  }

  Record_List get_all() override {
    if (site.refuses("all maps")) {
      return {};
    }
    return {an_eta_camera(
        110, a_camera(10),
        {stored(an_active_trigger(7).with(object_detection("vehicle")).with(onvif(topic)))})};
  }

  void delete_stale() override { site.refuses("delete stale maps"); }

  static Record_List answer(const std::string& query) {
    const std::map<std::string, Record_List> script{
        {"maps holding 7 outside cameras [10, 11, 12]",
         {an_eta_camera(113, a_camera(13), {a_record_of(7)})}},
        {"maps holding 9 matching cameras []",
         {an_eta_camera(114, a_camera(14), {a_record_of(9)})}},
        {"maps holding 10 matching cameras []",
         {an_eta_camera(115, a_camera(15), {a_record_of(10)})}},
    };
    const auto found = script.find(query);
    return found == script.end() ? Record_List() : found->second;
  }

  Scripted_Site& site;
};

struct Scripted_Capture_Manager : capture::Manager {
  explicit Scripted_Capture_Manager(Scripted_Site& owner) : site(owner) {}

  void reconcile_metadata_stream(std::uint64_t camera_id) override {
    site.refuses(fmt::format("reconcile camera {}", camera_id));
  }

  Scripted_Site& site;
};

struct Scripted_Pusher : Trigger_Notification_Pusher {
  explicit Scripted_Pusher(Scripted_Site& owner) : site(owner) {}

  void stop() override { site.refuses("stop the pusher"); }

  void apply_trigger_state(Trigger_Config_State state) override {
    site.refuses("push");
    site.pushed = std::move(state);
  }

  Scripted_Site& site;
};

struct Scripted_Resolver : Meta_Type_Resolver {
  explicit Scripted_Resolver(Scripted_Site& owner) : site(owner) {}

  std::vector<std::string> resolve(const std::vector<std::string>& types) override {
    if (site.refuses(fmt::format("resolve {}", types))) {
      return {};
    }
    return {"car", "truck"};
  }

  Scripted_Site& site;
};

/// The real parser, each call of which is told.
struct Told_Parser : Trigger_Parser {
  Told_Parser(Scripted_Site& owner, std::shared_ptr<Repository> repository)
      : site(owner), parser(std::move(repository), this_server) {}

  Trigger_Mapping parse_trigger_mapping(const Json::Value& document) override {
    site.refuses("parse mapping");
    return parser.parse_trigger_mapping(document);
  }

  std::vector<Trigger_Config> parse_trigger_configs(
      const Json::Value& document, const Trigger_Mapping& trigger_mapping) override {
    site.refuses("parse triggers");
    return parser.parse_trigger_configs(document, trigger_mapping);
  }

  Notification_Properties parse_config_properties(const Json::Value& document) override {
    site.refuses("parse properties");
    return parser.parse_config_properties(document);
  }

  Scripted_Site& site;
  Vemora_Trigger_Parser parser;
};

std::string describe(const boost::log::attribute_value_set& values) {
  const auto severity = boost::log::extract<logging::severity_level>("Severity", values);
  const auto channel = boost::log::extract<std::string>("Channel", values);
  return fmt::format("log {} of severity {}", channel.get(), static_cast<int>(severity.get()));
}

}  // namespace

// 7 is new and listens to everything; 8 was renamed; 9 is another server's; 10 is for cameras that
// do not exist.
const Json::Value Scripted_Site::config = json(R"({
  "triggers": [
    {"id": 7, "name": "gate", "scheduleIds": [1], "anyTime": true,
     "tags": {"server": {"site": "north"}, "camera": {"area": "gate"},
              "eventSubscription": {"door": "main"}},
     "sources": [{"type": "onvif-metadata", "onvifTopic": "tns1:A"},
                 {"type": "metadata-event"},
                 {"type": "object-detection", "searchItem": {"type": "vehicle"}},
                 {"type": "motion-detection"}]},
    {"id": 8, "name": "yard", "tags": {}, "sources": [{"type": "audio-detection"}]},
    {"id": 9, "name": "roof", "tags": {"server": {"site": "south"}},
     "sources": [{"type": "audio-detection"}]},
    {"id": 10, "name": "trigger 10", "tags": {"camera": {"nowhere": "at all"}},
     "sources": [{"type": "audio-detection"}]}],
  "properties": {"notificationMaxLatencySecs": 30}})");

const Json::Value Scripted_Site::mapping =
    json(R"({"triggerMapping": [{"triggerIds": [7], "scheduleIds": [2]}]})");

Scripted_Site::Scripted_Site()
    : platform_calls_([this](stub_platform::Function, const std::string& call) { refuses(call); }) {
  boost::log::core::get()->set_filter([this](const boost::log::attribute_value_set& values) {
    refuses(describe(values));
    return true;
  });
}

Scripted_Site::~Scripted_Site() {
  boost::log::core::get()->reset_filter();
}

std::unique_ptr<Trigger_Manager> Scripted_Site::a_manager(const Json::Value& stored_config,
                                                          const Json::Value& stored_mapping,
                                                          const std::set<std::string>& missing) {
  const auto unless_missing = [&missing](const char* name, auto collaborator) {
    return missing.count(name) == 0 ? std::move(collaborator) : nullptr;
  };
  const auto repository = std::make_shared<Repository>(
      unless_missing("camera repository", std::make_unique<Scripted_Cameras>(*this)),
      unless_missing("server repository", std::make_unique<Scripted_Servers>(*this)),
      unless_missing("metadata event category repository",
                     std::make_unique<Scripted_Categories>(*this)),
      unless_missing("metadata event subscription repository",
                     std::make_unique<Scripted_Subscriptions>(*this)),
      unless_missing("trigger repository", std::make_unique<Scripted_Triggers>(*this)),
      unless_missing("schedule repository", std::make_unique<Scripted_Schedules>(*this)),
      unless_missing("ETA camera repository", std::make_unique<Scripted_ETA_Cameras>(*this)));
  auto parser =
      std::make_unique<Told_Parser>(*this, unless_missing("repository of the parser", repository));
  return std::make_unique<Vemora_Trigger_Manager>(
      stored_config, stored_mapping, unless_missing("repository", repository),
      unless_missing("capture manager", std::make_shared<Scripted_Capture_Manager>(*this)),
      unless_missing("parser", std::move(parser)),
      unless_missing("notification pusher", std::make_shared<Scripted_Pusher>(*this)),
      unless_missing("meta type resolver", std::make_shared<Scripted_Resolver>(*this)));
}

bool Scripted_Site::refuses(const std::string& call) {
  return listener_ && listener_(call) == Answer::refused;
}

}  // namespace kuv::test
