// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sqlite3.h>

#include <cstdint>

#include "vemora/embedded_server/persistent/engine/sqlite_handle.h"

namespace kuv::vemora::embedded_server {

/// Makes the tables of a site of that version in an empty database, to compare others with.
void make_tables_of_version(SQLite_Handle& empty, std::int32_t version);

/// Makes the tables of a site where `present` is 0, or brings those of that version up to date.
/// Indexes, triggers and views of other programs stay; a column that another program added and that
/// would be lost is a reason to refuse. To be called in a transaction; throws Database_Error.
void run_schema_steps(sqlite3* handle, std::int32_t present);

}  // namespace kuv::vemora::embedded_server
