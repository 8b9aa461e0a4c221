#pragma once

#include <sqlite3.h>

#include <cstdint>

namespace kuv::vemora::embedded_server {

// Statements that ODB does not take. They throw Database_Error.

/// The number that a query answers.
std::int64_t query_number(sqlite3* handle, const char* sql);

/// Runs statements, as many as there are, that answer nothing of interest.
void run_script(sqlite3* handle, const char* script);

}  // namespace kuv::vemora::embedded_server
