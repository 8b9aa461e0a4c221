// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_handle.h"

#include <sqlite3.h>

#include <memory>

namespace kuv::vemora::embedded_server {
namespace {

using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

}  // namespace

bool SQLite_Fault::is_damage() const {
  const int kind = code_ & 0xFF;
  return kind == SQLITE_CORRUPT || kind == SQLITE_NOTADB;
}

SQLite_Handle::SQLite_Handle(const std::string& name, int flags) {
  const int opened = sqlite3_open_v2(name.c_str(), &handle_, flags, nullptr);
  if (opened != SQLITE_OK) {
    const std::string text = handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(opened);
    sqlite3_close(handle_);
    throw SQLite_Fault(opened, text);
  }
}

SQLite_Handle::~SQLite_Handle() {
  sqlite3_close(handle_);
}

void SQLite_Handle::fail(int code) {
  throw SQLite_Fault(code, sqlite3_errmsg(handle_));
}

void SQLite_Handle::run(const std::string& script) {
  const int done = sqlite3_exec(handle_, script.c_str(), nullptr, nullptr, nullptr);
  if (done != SQLITE_OK) {
    fail(done);
  }
}

void SQLite_Handle::run_with(const std::string& statement, const std::string& text) {
  sqlite3_stmt* prepared = nullptr;
  const int known = sqlite3_prepare_v2(handle_, statement.c_str(), -1, &prepared, nullptr);
  const Statement owner(prepared, &sqlite3_finalize);
  if (known != SQLITE_OK) {
    fail(known);
  }
  sqlite3_bind_text(prepared, 1, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
  const int done = sqlite3_step(prepared);
  if (done != SQLITE_DONE && done != SQLITE_ROW) {
    fail(done);
  }
}

void SQLite_Handle::for_each(const std::string& query,
                             const std::function<void(sqlite3_stmt*)>& action) {
  sqlite3_stmt* prepared = nullptr;
  const int known = sqlite3_prepare_v2(handle_, query.c_str(), -1, &prepared, nullptr);
  const Statement owner(prepared, &sqlite3_finalize);
  if (known != SQLITE_OK) {
    fail(known);
  }
  int stepped = SQLITE_ROW;
  while ((stepped = sqlite3_step(prepared)) == SQLITE_ROW) {
    action(prepared);
  }
  if (stepped != SQLITE_DONE) {
    fail(stepped);
  }
}

std::int64_t SQLite_Handle::number(const std::string& query) {
  std::int64_t answer = 0;
  for_each(query, [&answer](sqlite3_stmt* row) { answer = sqlite3_column_int64(row, 0); });
  return answer;
}

std::string SQLite_Handle::text(const std::string& query) {
  std::string answer;
  for_each(query, [&answer](sqlite3_stmt* row) {
    const auto* const bytes = sqlite3_column_text(row, 0);
    if (answer.empty() && bytes != nullptr) {
      answer = reinterpret_cast<const char*>(bytes);
    }
  });
  return answer;
}

}  // namespace kuv::vemora::embedded_server
