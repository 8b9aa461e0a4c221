// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/services/capture_manager.h"

namespace kuv::test {

class Mock_Capture_Manager : public vemora::capture::Manager {
 public:
  MOCK_METHOD(void, reconcile_metadata_stream, (std::uint64_t camera_id), (override));
};

}  // namespace kuv::test
