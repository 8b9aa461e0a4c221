// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>

#include "vemora/embedded_server/persistent/backup.h"

namespace kuv::vemora::tools {

// The content of a backup, as `backup` and `restore` print it.

Json::Value to_json(const embedded_server::Site_Counts& counts);

std::string in_words(const embedded_server::Site_Counts& counts);

}  // namespace kuv::vemora::tools
