// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/services/meta_type_resolver.h"

namespace kuv::test {

class Mock_Meta_Type_Resolver : public vemora::Meta_Type_Resolver {
 public:
  MOCK_METHOD(std::vector<std::string>, resolve, (const std::vector<std::string>& types),
              (override));
};

}  // namespace kuv::test
