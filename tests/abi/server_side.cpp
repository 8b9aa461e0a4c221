// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"

// The compiler describes an interface where somebody implements it. The trigger manager only calls
// these, so here is what a server has of its own.

namespace kuv::test {

using namespace kuv::vemora;

struct Server_Capture_Manager : capture::Manager {
  void reconcile_metadata_stream(std::uint64_t camera_id) override;
};

struct Server_Pusher : Trigger_Notification_Pusher {
  void stop() override;
  void apply_trigger_state(Trigger_Config_State state) override;
};

struct Server_Resolver : Meta_Type_Resolver {
  std::vector<std::string> resolve(const std::vector<std::string>& types) override;
};

void Server_Capture_Manager::reconcile_metadata_stream(std::uint64_t /*camera_id*/) {}

void Server_Pusher::stop() {}

void Server_Pusher::apply_trigger_state(Trigger_Config_State /*state*/) {}

std::vector<std::string> Server_Resolver::resolve(const std::vector<std::string>& types) {
  return types;
}

}  // namespace kuv::test
