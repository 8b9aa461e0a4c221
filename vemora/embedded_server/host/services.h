// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "vemora/embedded_server/inventory/object_types.h"
#include "vemora/platform/export.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"

namespace kuv::vemora::embedded_server {

/// Records the cameras that it is asked to reconcile. Another capture manager does the work;
/// without one, there is nothing to do.
class VEMORA_API Recording_Capture_Manager : public capture::Manager {
 public:
  /// Passes each call on to `target`, unless it is null.
  explicit Recording_Capture_Manager(std::shared_ptr<capture::Manager> target = nullptr);

  void reconcile_metadata_stream(std::uint64_t camera_id) override;

  /// The cameras since the last forget().
  const std::set<std::uint64_t>& asked_for() const { return asked_for_; }
  /// Those of them for which the target did not throw.
  const std::set<std::uint64_t>& reconciled() const { return reconciled_; }

  /// Begins anew.
  void forget();

  /// Until the next forget(), the target is not called.
  void hold_back() noexcept { holds_back_ = true; }

 private:
  std::shared_ptr<capture::Manager> target_;
  bool holds_back_ = false;
  std::set<std::uint64_t> asked_for_;
  std::set<std::uint64_t> reconciled_;
};

/// Keeps the last state that it was given, once the other pusher, if there is one, has accepted it.
class VEMORA_API Snapshot_Pusher : public Trigger_Notification_Pusher {
 public:
  /// Passes each state on to `target`, unless it is null.
  explicit Snapshot_Pusher(std::shared_ptr<Trigger_Notification_Pusher> target = nullptr);

  void stop() override;
  void apply_trigger_state(Trigger_Config_State state) override;

  /// Nothing if none was accepted since the last forget().
  const std::optional<Trigger_Config_State>& state() const { return state_; }
  /// Begins anew, without a state.
  void forget();

  /// Until the next forget(), the target receives no state.
  void hold_back() noexcept { holds_back_ = true; }

 private:
  std::shared_ptr<Trigger_Notification_Pusher> target_;
  bool holds_back_ = false;
  std::optional<Trigger_Config_State> state_;
};

/// Resolves object types with the general object types of the site.
class VEMORA_API Inventory_Meta_Type_Resolver : public Meta_Type_Resolver {
 public:
  Inventory_Meta_Type_Resolver() = default;

  /// From now on, these are the general object types.
  void learn(Object_Types types) { types_ = std::move(types); }

  std::vector<std::string> resolve(const std::vector<std::string>& types) override;

 private:
  Object_Types types_;
};

}  // namespace kuv::vemora::embedded_server
