// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_parser/trigger_config_state.h"

namespace kuv::benchmarks {

// What a manager works with beside its repositories; nothing of it takes time.

class Idle_Capture_Manager : public vemora::capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t) override {}
};

class Discarding_Pusher : public vemora::Trigger_Notification_Pusher {
 public:
  void stop() override {}
  void apply_trigger_state(vemora::Trigger_Config_State state) override {
    errors_ = state.errors.size();
  }

  /// Of the last pass, if it came that far.
  std::size_t errors() const { return errors_; }
  void forget() { errors_ = 0; }

 private:
  std::size_t errors_ = 0;
};

class Plain_Resolver : public vemora::Meta_Type_Resolver {
 public:
  std::vector<std::string> resolve(const std::vector<std::string>& types) override { return types; }
};

}  // namespace kuv::benchmarks
