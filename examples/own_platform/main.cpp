// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// A server without the embedded one: its four platform libraries, its repositories and its services
// are its own. It runs two passes. Run it in an empty folder.

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

#include "repositories.h"
#include "store.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace {

using namespace kuv::vemora;
using own_platform::key_of;
using own_platform::Store;

constexpr std::uint64_t our_server = 1;
constexpr const char* motion = "tns1:VideoSource/MotionAlarm";

class Capture : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t camera_id) override {
    std::cout << "camera " << camera_id << ": reconcile the metadata stream\n";
    ++reconciled;
  }

  int reconciled = 0;
};

class Pusher : public Trigger_Notification_Pusher {
 public:
  void stop() override {}
  void apply_trigger_state(Trigger_Config_State given) override { state = std::move(given); }

  Trigger_Config_State state;
};

class Resolver : public Meta_Type_Resolver {
 public:
  std::vector<std::string> resolve(const std::vector<std::string>& types) override { return types; }
};

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

void describe_the_site(Store& store) {
  store.table("servers")[key_of(our_server)] = parse(R"({"name": "recorder", "tags": {}})");
  store.table("cameras")[key_of(10)] =
      parse(R"({"name": "door", "tags": {"door": null}, "objectDetection": true,
                "topics": ["tns1:VideoSource/MotionAlarm"]})");
}

const char* const configuration = R"({"triggers": [
  {"id": 7, "name": "somebody at the door", "tags": {"camera": {"door": null}}, "anyTime": true,
   "sources": [{"type": "onvif-metadata", "onvifTopic": "tns1:VideoSource/MotionAlarm"},
               {"type": "object-detection", "searchItem": {"type": "person"}}]}]})";

void run(const std::string& file) {
  const auto store = std::make_shared<Store>(file);
  describe_the_site(*store);
  const auto repository = own_platform::make_repository(store);
  const auto capture_manager = std::make_shared<Capture>();
  const auto pusher = std::make_shared<Pusher>();
  Vemora_Trigger_Manager manager(Json::Value(), Json::Value(), repository, capture_manager,
                                 std::make_unique<Vemora_Trigger_Parser>(repository, our_server),
                                 pusher, std::make_shared<Resolver>());

  const auto result = manager.update_config(parse(configuration));
  for (const auto& error : result.errors) {
    std::cout << "error: " << error.message << '\n';
  }
  require(result.success && result.errors.empty(), "the configuration is applied");
  store->save();
  require(capture_manager->reconciled == 1, "the one camera with a new subscription is reconciled");
  require(pusher->state.onvif_topics_by_trigger[7][10].count(motion) == 1,
          "trigger 7 listens to the camera's motion alarm");
  require(pusher->state.search_items_by_trigger[7][10].size() == 1,
          "trigger 7 has the camera search for people");

  require(manager.refresh_triggers(), "the stored configuration can be refreshed");
  require(capture_manager->reconciled == 1, "an unchanged site is left alone");
  require(Store(file).table("triggers").size() == 1, "the trigger is stored");
  std::cout << "trigger 7 listens to camera 10; the refresh changed nothing\n";
}

}  // namespace

int main() {
  const std::string file = "own_platform.json";
  try {
    if (std::filesystem::exists(file)) {
      throw std::runtime_error(file + " is there already; run this in an empty folder");
    }
    run(file);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "own_platform: " << error.what() << '\n';
    return 1;
  }
}
