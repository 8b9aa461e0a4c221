// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/database_place.h"

#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace kuv::test {
namespace {

/// In memory where the machine has a folder there: all that a disk adds to these tests is waiting.
std::filesystem::path fast_folder() {
  const std::filesystem::path memory = "/dev/shm";
  return ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

std::string make_folder() {
  std::string name = (fast_folder() / "vemora-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), name);
  }
  return name;
}

Row row_of(sqlite3_stmt* statement) {
  Row row;
  for (int column = 0; column < sqlite3_column_count(statement); ++column) {
    const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
    row.push_back(text == nullptr ? std::nullopt : std::make_optional(std::string(text, size)));
  }
  return row;
}

}  // namespace

std::map<std::string, Rows> Foreign_Program::everything() {
  std::map<std::string, Rows> found;
  for (const std::string& table : tables()) {
    Rows rows = query("SELECT * FROM " + table);
    std::sort(rows.begin(), rows.end());
    if (!rows.empty()) {
      found.emplace(table, std::move(rows));
    }
  }
  return found;
}

std::size_t Foreign_Program::count(const std::string& table) {
  return std::stoul(query("SELECT count(*) FROM " + table).at(0).at(0).value());
}

std::ostream& operator<<(std::ostream& stream, const Database_Engine& engine) {
  return stream << engine.name;
}

std::vector<std::string> Database_Engine::storable(const std::vector<std::string>& texts) const {
  std::vector<std::string> taken;
  for (const std::string& text : texts) {
    const bool plain =
        text.find('\0') == std::string::npos && text.find('\xFF') == std::string::npos;
    if (takes_any_bytes || plain) {
      taken.push_back(text);
    }
  }
  return taken;
}

Database_Engine postgresql_engine() {
  return {"postgresql", [] { return std::make_unique<PostgreSQL_Place>(); }, false, false};
}

std::vector<Database_Engine> database_engines() {
  return {
      {"sqlite", [] { return std::make_unique<SQLite_Place>(); }},
      postgresql_engine(),
  };
}

SQLite_Place::SQLite_Place() : folder_(make_folder()) {}

SQLite_Place::~SQLite_Place() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::unique_ptr<Foreign_Program> SQLite_Place::foreign_program() {
  return std::make_unique<SQLite_Program>(location());
}

SQLite_Program::SQLite_Program(const std::string& path) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  if (sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr) != SQLITE_OK) {
    const std::string complaint = sqlite3_errmsg(handle_);
    sqlite3_close(handle_);
    throw std::runtime_error(complaint);
  }
}

SQLite_Program::~SQLite_Program() {
  sqlite3_close(handle_);
}

void SQLite_Program::execute(const std::string& sql) {
  if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(handle_));
  }
}

Rows SQLite_Program::query(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(handle_));
  }
  Rows rows;
  int stepped = SQLITE_ROW;
  while ((stepped = sqlite3_step(statement)) == SQLITE_ROW) {
    rows.push_back(row_of(statement));
  }
  sqlite3_finalize(statement);
  if (stepped != SQLITE_DONE) {
    throw std::runtime_error(sqlite3_errmsg(handle_));
  }
  return rows;
}

std::vector<std::string> SQLite_Program::tables() {
  std::vector<std::string> names;
  for (const Row& row :
       query("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name")) {
    names.push_back(row.at(0).value());
  }
  return names;
}

}  // namespace kuv::test
