// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/services/trigger_notification_pusher.h"

namespace kuv::test {

class Mock_Trigger_Notification_Pusher : public vemora::Trigger_Notification_Pusher {
 public:
  MOCK_METHOD(void, stop, (), (override));
  MOCK_METHOD(void, apply_trigger_state, (vemora::Trigger_Config_State state), (override));
};

}  // namespace kuv::test
