// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/open_mode.h"

namespace kuv::vemora::embedded_server {

class SQLite_Database;

/// One file, no server. Processes queue up at a lock file beside it.
class SQLite_Engine : public Engine {
 public:
  SQLite_Engine(const std::string& path, Open_Mode mode, std::chrono::milliseconds lock_wait);
  ~SQLite_Engine() override;

  odb::database& odb() override;
  Row_Writer& rows() override { return *rows_; }
  const std::string& location() const override { return path_; }
  std::unique_ptr<Session> open_session(Session::Access access) override;
  void migrate(std::int32_t present) override;
  std::optional<std::int32_t> schema_version() override;
  bool can_hold(std::initializer_list<std::string_view> texts) override;
  bool holds_transaction() override;
  void require_in_place() override { files_.require_in_place(); }
  std::string describe(const std::exception& fault) override;

 private:
  std::optional<std::string> broken_constraint();

  std::string path_;
  SQLite_Files files_;
  std::chrono::milliseconds lock_wait_;
  std::unique_ptr<SQLite_Database> database_;
  std::unique_ptr<Row_Writer> rows_;
};

}  // namespace kuv::vemora::embedded_server
