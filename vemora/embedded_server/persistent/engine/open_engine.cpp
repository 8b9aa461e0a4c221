// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/open_engine.h"

#include <fmt/format.h>

#include <filesystem>
#include <odb/exception.hxx>
#include <string_view>
#include <system_error>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/postgresql_engine.h"
#include "vemora/embedded_server/persistent/engine/postgresql_location.h"
#include "vemora/embedded_server/persistent/engine/sqlite_engine.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::string_view sqlite_prefix = "sqlite:";

bool is_absent(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::status(path, ignored).type() == std::filesystem::file_type::not_found;
}

}  // namespace

std::unique_ptr<Engine> open_engine(const std::string& location, Open_Mode mode,
                                    std::chrono::milliseconds lock_wait) {
  if (is_postgresql_location(location)) {
    return std::make_unique<PostgreSQL_Engine>(location, lock_wait);
  }
  const std::string path = sqlite_path_of(location);
  if (mode == Open_Mode::as_found && is_absent(path)) {
    return nullptr;
  }
  try {
    return std::make_unique<SQLite_Engine>(path, mode, lock_wait);
  } catch (const odb::exception& fault) {
    throw Database_Error(fmt::format("database {}: {}", path, fault.what()));
  }
}

std::string sqlite_path_of(const std::string& location) {
  const bool prefixed = location.compare(0, sqlite_prefix.size(), sqlite_prefix) == 0;
  std::string path = prefixed ? location.substr(sqlite_prefix.size()) : location;
  if (path.empty()) {
    throw Database_Error("no database named");
  }
  if (!prefixed && path.find("://") != std::string::npos) {
    throw Database_Error(fmt::format("no engine for databases such as {}", path));
  }
  return path;
}

}  // namespace kuv::vemora::embedded_server
