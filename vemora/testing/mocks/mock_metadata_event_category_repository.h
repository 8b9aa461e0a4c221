// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/metadata_event_category_repository.h"

namespace kuv::test {

class Mock_Metadata_Event_Category_Repository : public vemora::Metadata_Event_Category_Repository {
 public:
  MOCK_METHOD(std::shared_ptr<vemora::metadata_event_category>, find_by_name,
              (const std::string& name), (override));
};

}  // namespace kuv::test
