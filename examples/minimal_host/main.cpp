// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The smallest server that runs triggers: it implements the three services of the trigger manager,
// keeps its records in the embedded database, and runs two passes. Run it in an empty folder.

#include <json/reader.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace {

using namespace kuv::vemora;
using embedded_server::Database;
using embedded_server::Inventory;
using embedded_server::Pass_Scope;

constexpr std::uint64_t our_server = 1;
constexpr const char* motion = "tns1:VideoSource/MotionAlarm";

//! [services]
/// Would ask the camera for the events of its subscriptions.
class Capture : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t camera_id) override {
    std::cout << "camera " << camera_id << ": reconcile the metadata stream\n";
    ++reconciled;
  }

  int reconciled = 0;
};

/// Would notify people of what the triggers see from now on.
class Pusher : public Trigger_Notification_Pusher {
 public:
  void stop() override {}
  void apply_trigger_state(Trigger_Config_State given) override { state = std::move(given); }

  Trigger_Config_State state;
};

/// Knows no general object types: each stands for itself.
class Resolver : public Meta_Type_Resolver {
 public:
  std::vector<std::string> resolve(const std::vector<std::string>& types) override { return types; }
};
//! [services]

Json::Value parse(const std::string& text) {
  Json::Value document;
  std::istringstream(text) >> document;
  return document;
}

void require(bool holds, const std::string& what) {
  if (!holds) {
    throw std::runtime_error("not as it should be: " + what);
  }
}

//! [inventory]
Inventory tiny_inventory() {
  Inventory site;
  server recorder;
  recorder.id = our_server;
  recorder.name = "recorder";
  site.servers.push_back(recorder);
  Inventory::Camera door;
  door.id = 10;
  door.name = "door";
  door.tags["door"];
  door.object_detection = true;
  door.capabilities =
      R"({"Metadata": {"Mode": {"capabilities": {"On": {"TopicFilter": {"capabilities":
          {"tns1:VideoSource/MotionAlarm": ""}}}}}}})";
  site.cameras.push_back(door);
  return site;
}
//! [inventory]

//! [passes]
const char* const configuration = R"({"triggers": [
  {"id": 7, "name": "somebody at the door", "tags": {"camera": {"door": null}}, "anyTime": true,
   "sources": [{"type": "onvif-metadata", "onvifTopic": "tns1:VideoSource/MotionAlarm"},
               {"type": "object-detection", "searchItem": {"type": "person"}}]}]})";

void run(const std::string& file) {
  const auto database = Database::open(file, Database::Open_Mode::create_if_absent);
  embedded_server::store_inventory(database, tiny_inventory());

  const auto repository = embedded_server::make_repository(database);
  const auto capture_manager = std::make_shared<Capture>();
  const auto pusher = std::make_shared<Pusher>();
  Vemora_Trigger_Manager manager(Json::Value(), Json::Value(), repository, capture_manager,
                                 std::make_unique<Vemora_Trigger_Parser>(repository, our_server),
                                 pusher, std::make_shared<Resolver>());

  {
    Pass_Scope pass(database, our_server);
    const auto result = manager.update_config(parse(configuration));
    pass.end();
    for (const auto& error : result.errors) {
      std::cout << "error: " << error.message << '\n';
    }
    require(result.success && result.errors.empty(), "the configuration is applied");
    pass.store({configuration, std::nullopt}, {10});
  }
  require(capture_manager->reconciled == 1, "the one camera with a new subscription is reconciled");
  require(pusher->state.applied_triggers.count(7) == 1, "trigger 7 is active");
  require(pusher->state.onvif_topics_by_trigger[7][10].count(motion) == 1,
          "trigger 7 listens to the camera's motion alarm");
  require(pusher->state.search_items_by_trigger[7][10].size() == 1,
          "trigger 7 has the camera search for people");

  Pass_Scope pass(database, our_server);
  const bool refreshed = manager.refresh_triggers();
  pass.end();
  require(refreshed, "the stored configuration can be refreshed");
  require(capture_manager->reconciled == 1, "an unchanged site is left alone");
  std::cout << "trigger 7 listens to camera 10; the refresh changed nothing\n";
}
//! [passes]

}  // namespace

int main() {
  const std::string file = "minimal_host.db";
  try {
    if (std::filesystem::exists(file)) {
      throw std::runtime_error(file + " is there already; run this in an empty folder");
    }
    run(file);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "minimal_host: " << error.what() << '\n';
    return 1;
  }
}
