// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "vemora/embedded_server/persistent/database_error.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kuv::vemora::embedded_server {

/// A fault of SQLite's, with its number.
class SQLite_Fault : public Database_Error {
 public:
  SQLite_Fault(int code, const std::string& text) : Database_Error(text), code_(code) {}

  int code() const { return code_; }

  /// Whether what the file holds is no database any more.
  bool is_damage() const;

 private:
  int code_;
};

/// A connection to a file as a whole, for what is no work on records. Everything throws
/// SQLite_Fault.
class SQLite_Handle {
 public:
  /// `name` may be a URI, and is a temporary database when it is empty.
  SQLite_Handle(const std::string& name, int flags);
  ~SQLite_Handle();
  SQLite_Handle(const SQLite_Handle&) = delete;
  SQLite_Handle& operator=(const SQLite_Handle&) = delete;

  sqlite3* get() const { return handle_; }

  /// Runs statements; of the second kind one, with a text for its parameter.
  void run(const std::string& script);
  void run_with(const std::string& statement, const std::string& text);

  /// Calls for each row.
  void for_each(const std::string& query, const std::function<void(sqlite3_stmt*)>& action);

  /// The first value of the first row; 0, or nothing, where there is none.
  std::int64_t number(const std::string& query);
  std::string text(const std::string& query);

 private:
  [[noreturn]] void fail(int code);

  sqlite3* handle_ = nullptr;
};

}  // namespace kuv::vemora::embedded_server
