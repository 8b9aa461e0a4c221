// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "vemora/operations/plan/plan.h"

namespace kuv::vemora::tools {

/// What would become of each record, and which stored documents would be replaced.
Json::Value to_json(const operations::Plan& plan);

}  // namespace kuv::vemora::tools
