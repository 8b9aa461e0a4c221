// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <functional>
#include <string>

namespace kuv::vemora::embedded_server {

// Statements that ODB does not take. They throw Database_Error.

/// The number that a query answers.
std::int64_t query_number(sqlite3* handle, const char* sql);

/// Calls for each row that a query answers.
void query_rows(sqlite3* handle, const char* sql, const std::function<void(sqlite3_stmt*)>& action);

/// A text of a row, which is none that may be NULL: without one, memory has run out.
std::string text_in(sqlite3_stmt* row, int column);

/// Runs statements, as many as there are, that answer nothing of interest.
void run_script(sqlite3* handle, const char* script);

}  // namespace kuv::vemora::embedded_server
