// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/trigger_repository.h"

namespace kuv::test {

class Mock_Trigger_Repository : public vemora::Trigger_Repository {
 public:
  using Record = std::shared_ptr<vemora::trigger>;

  MOCK_METHOD(Record, find_by_id, (std::uint64_t id), (override));
  MOCK_METHOD(bool, add, (const Record& added), (override));
  MOCK_METHOD(bool, update, (const Record& changed), (override));
  MOCK_METHOD(void, delete_all_except, (const std::set<std::uint64_t>& kept), (override));
  MOCK_METHOD(void, delete_all, (), (override));
};

}  // namespace kuv::test
