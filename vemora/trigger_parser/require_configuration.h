// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "vemora/trigger_parser/faults.h"

namespace kuv::vemora {

/// Whether a trigger configuration document is one at all, that is, has keys.
bool require_configuration(const Json::Value& document, Faults& faults);

}  // namespace kuv::vemora
