// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/copied_site.h"

namespace kuv::vemora::embedded_server {

/// Puts the site in `file` in the place of the one in the SQLite file at `database`, which need not
/// be there. Throws Database_Error.
Restored_Site restore_sqlite(const std::string& database, std::uint64_t server_id,
                             const std::string& file, std::chrono::milliseconds lock_wait);

}  // namespace kuv::vemora::embedded_server
