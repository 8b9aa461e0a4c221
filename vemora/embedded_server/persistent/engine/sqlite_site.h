// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/copied_site.h"
#include "vemora/embedded_server/persistent/engine/sqlite_handle.h"

namespace kuv::vemora::embedded_server {

// What a file holds that was opened without the engine, in the words that the engine has for it.
// All throw Database_Error.

/// Whether there is anything in it.
bool holds_tables(SQLite_Handle& file);

/// Refuses what is no site, one of a newer version, and one of another server. Answers its version.
std::int32_t require_site(SQLite_Handle& file, std::uint64_t server_id);

/// Looks all of it through: pages, rows, and whether no table of ours is missing.
void require_whole(SQLite_Handle& file);

Site_Counts counts_in(SQLite_Handle& file);

}  // namespace kuv::vemora::embedded_server
