// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "vemora/embedded_server/persistent/changes.h"

namespace kuv::vemora::tools {

Json::Value counts_to_json(const embedded_server::Change_Counts& counts);

/// For people: a line for each kind of which something was written or deleted.
void print_changed(const embedded_server::Change_Counts& counts);

}  // namespace kuv::vemora::tools
