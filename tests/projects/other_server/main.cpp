// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Runs two passes on this server's own libraries and repositories. Started with all symbols looked
// up at once, it shows that the four libraries are all that the product needs.
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "repositories.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace {

using namespace kuv::vemora;

class Capture : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t /*camera_id*/) override {}
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

void require(bool holds, const std::string& what) {
  if (!holds) {
    throw std::runtime_error("not as it should be: " + what);
  }
}

Json::Value one_trigger() {
  Json::Value source;
  source["type"] = "object-detection";
  source["searchItem"]["type"] = "person";
  Json::Value trigger;
  trigger["id"] = 7;
  trigger["name"] = "somebody at the door";
  trigger["tags"]["camera"]["door"] = Json::nullValue;
  trigger["sources"].append(source);
  Json::Value document;
  document["triggers"].append(trigger);
  return document;
}

void run() {
  const auto repository = other_server::make_repository();
  const auto pusher = std::make_shared<Pusher>();
  Vemora_Trigger_Manager manager(
      Json::Value(), Json::Value(), repository, std::make_shared<Capture>(),
      std::make_unique<Vemora_Trigger_Parser>(repository, 1), pusher, std::make_shared<Resolver>());
  const auto result = manager.update_config(one_trigger());
  require(result.success && result.errors.empty(), "the configuration is applied");
  require(pusher->state.search_items_by_trigger[7][10].size() == 1,
          "camera 10 searches for people");
  Json::Value nothing;
  nothing["triggers"] = Json::arrayValue;
  require(manager.update_config(nothing).success, "the trigger is removed");
  require(repository->eta_cameras().get_all().empty(), "nobody searches any more");
}

}  // namespace

int main() {
  try {
    run();
    std::cout << "another server ran two passes\n";
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "other_server: " << error.what() << '\n';
    return 1;
  }
}
