// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/require_configuration.h"

namespace kuv::vemora {

bool require_configuration(const Json::Value& document, Faults& faults) {
  return faults.require(document.isObject(), document,
                        "Trigger configuration must be a JSON object.");
}

}  // namespace kuv::vemora
