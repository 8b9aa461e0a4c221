// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "vemora/embedded_server/persistent/copied_site.h"

namespace kuv::vemora::embedded_server {

/// Copies the site in the SQLite file at `database` into `file`. The caller keeps passes out.
/// Throws Database_Error.
Site_Counts back_up_sqlite(const std::string& database, const std::string& file);

}  // namespace kuv::vemora::embedded_server
