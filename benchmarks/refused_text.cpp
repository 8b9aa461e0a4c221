// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/refused_text.h"

#include <sqlite3.h>

#include "embedded_server/persistent/sqlite_connection.h"

namespace kuv::benchmarks {
namespace {

constexpr int limit = 100'000;  // no other row of the benchmarks has as many bytes

}  // namespace

Refused_Text::Refused_Text(vemora::embedded_server::Database& database, bool is_postgresql)
    : database_(database) {
  if (is_postgresql) {
    text_ = std::string("zero\0inside", 11);
  } else {
    text_ = std::string(limit + 1, 'x');
    limit_before_ = sqlite3_limit(test::idle_connection(database), SQLITE_LIMIT_LENGTH, limit);
  }
}

Refused_Text::~Refused_Text() {
  if (limit_before_ != 0) {
    sqlite3_limit(test::idle_connection(database_), SQLITE_LIMIT_LENGTH, limit_before_);
  }
}

}  // namespace kuv::benchmarks
