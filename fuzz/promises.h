// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "vemora/trigger_parser/notification_properties.h"
#include "vemora/trigger_parser/trigger_config.h"
#include "vemora/trigger_parser/trigger_mapping.h"

namespace kuv::fuzz {

/// What the parser made of two documents that it accepted.
struct Parsed {
  vemora::Notification_Properties properties;
  vemora::Trigger_Mapping mapping;
  std::vector<vemora::Trigger_Config> configs;
};

/// What the parser promises of accepted documents and did not keep; nothing when all is well.
std::vector<std::string> broken_promises(const Parsed& parsed, const Json::Value& configuration,
                                         const Json::Value& mapping);

}  // namespace kuv::fuzz
