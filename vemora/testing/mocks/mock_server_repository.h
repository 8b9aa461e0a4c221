// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/server_repository.h"

namespace kuv::test {

class Mock_Server_Repository : public vemora::Server_Repository {
 public:
  MOCK_METHOD(std::shared_ptr<vemora::server>, get_by_id, (std::uint64_t id), (override));
};

}  // namespace kuv::test
