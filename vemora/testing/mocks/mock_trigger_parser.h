// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::test {

class Mock_Trigger_Parser : public vemora::Trigger_Parser {
 public:
  MOCK_METHOD(vemora::Trigger_Mapping, parse_trigger_mapping, (const Json::Value& document),
              (override));
  MOCK_METHOD(std::vector<vemora::Trigger_Config>, parse_trigger_configs,
              (const Json::Value& document, const vemora::Trigger_Mapping& mapping), (override));
  MOCK_METHOD(vemora::Notification_Properties, parse_config_properties,
              (const Json::Value& document), (override));
};

}  // namespace kuv::test
