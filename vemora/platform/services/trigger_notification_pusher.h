// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/export.h"
#include "vemora/trigger_parser/trigger_config_state.h"

namespace kuv::vemora {

/// Delivers notifications of what triggers saw. The order of the operations is part of the ABI.
class VEMORA_API Trigger_Notification_Pusher {
 public:
  virtual ~Trigger_Notification_Pusher() = default;

  /// Stops delivering and drops what is queued, for a server that shuts down. The trigger manager
  /// never calls it. Repeating it changes nothing.
  virtual void stop() = 0;

  /// Takes what each trigger listens to from now on, as a whole: nothing of an earlier state
  /// remains. Called at the end of every pass, on its thread and under the trigger manager's lock,
  /// so it must not call back into the trigger manager. What it throws fails the pass.
  virtual void apply_trigger_state(Trigger_Config_State state) = 0;
};

}  // namespace kuv::vemora
