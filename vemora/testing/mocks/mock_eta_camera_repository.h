// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/eta_camera_repository.h"

namespace kuv::test {

class Mock_ETA_Camera_Repository : public vemora::ETA_Camera_Repository {
 public:
  using Record = std::shared_ptr<vemora::eta_camera>;

  MOCK_METHOD(Record, get_by_camera_id, (std::uint64_t camera_id), (override));
  MOCK_METHOD(bool, add, (const Record& added), (override));
  MOCK_METHOD(bool, update, (const Record& changed), (override));
  MOCK_METHOD(Record_List, get, (const Get_Params& params), (override));
  MOCK_METHOD(Record_List, get_all, (), (override));
  MOCK_METHOD(void, delete_stale, (), (override));
};

}  // namespace kuv::test
