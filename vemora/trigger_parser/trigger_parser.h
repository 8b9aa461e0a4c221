// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <vector>

#include "vemora/platform/export.h"
#include "vemora/trigger_parser/notification_properties.h"
#include "vemora/trigger_parser/trigger_config.h"
#include "vemora/trigger_parser/trigger_mapping.h"

namespace kuv::vemora {

/// Reads the two documents that triggers come from. The order of the operations is part of the ABI.
///
/// A document is taken or rejected as a whole: the first fault ends the call with a
/// Backend_Error<std::runtime_error> whose text says what is wrong. Errors of the database reach
/// the caller unchanged. The trigger manager calls these under its lock, one thread at a time.
class VEMORA_API Trigger_Parser {
 public:
  virtual ~Trigger_Parser() = default;

  /// The schedules that a trigger mapping ("triggerMapping") associates with each trigger.
  virtual Trigger_Mapping parse_trigger_mapping(const Json::Value& document) = 0;

  /// The triggers of a trigger configuration document ("triggers"), in its order. `mapping`
  /// can make triggers with a list of schedules inactive. Throws Internal_Error<std::logic_error>
  /// when the database does not know this server.
  virtual std::vector<Trigger_Config> parse_trigger_configs(const Json::Value& document,
                                                            const Trigger_Mapping& mapping) = 0;

  /// The notification timing ("properties") of a trigger configuration document.
  virtual Notification_Properties parse_config_properties(const Json::Value& document) = 0;
};

}  // namespace kuv::vemora
