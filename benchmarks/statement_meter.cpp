// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/statement_meter.h"

#include <sqlite3.h>

#include <atomic>
#include <string_view>

namespace kuv::benchmarks {
namespace {

std::atomic<std::size_t> statements{0};

/// SQLite tells of the statements of its own triggers as comments.
int on_statement(unsigned, void*, void*, void* text) {
  if (std::string_view(static_cast<const char*>(text)).substr(0, 2) != "--") {
    ++statements;
  }
  return 0;
}

int on_open(sqlite3* database, char**, const void*) {
  return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, on_statement, nullptr);
}

}  // namespace

void meter_statements() {
  // As SQLite has it: it is called with the arguments of on_open.
  sqlite3_auto_extension(reinterpret_cast<void (*)()>(on_open));
}

std::size_t statements_so_far() {
  return statements;
}

}  // namespace kuv::benchmarks
