// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/postgresql_location.h"
#include "vemora/embedded_server/persistent/engine/postgresql_row_writer.h"

namespace kuv::vemora::embedded_server {

class PostgreSQL_Database;

/// A site in a PostgreSQL schema of its own; one database may have many. Processes take turns with
/// an advisory lock, which is lost together with the connection through which its holder writes.
class PostgreSQL_Engine : public Engine {
 public:
  PostgreSQL_Engine(const std::string& url, std::chrono::milliseconds lock_wait);
  ~PostgreSQL_Engine() override;

  odb::database& odb() override;
  Row_Writer& rows() override { return rows_; }
  const std::string& location() const override { return location_.shown; }
  std::unique_ptr<Session> open_session(Session::Access access) override;
  void migrate(std::int32_t present) override;
  std::optional<std::int32_t> schema_version() override;
  bool can_hold(std::initializer_list<std::string_view> texts) override;
  bool holds_transaction() override;
  std::string describe(const std::exception& fault) override;

 private:
  PostgreSQL_Location location_;
  std::chrono::milliseconds lock_wait_;
  std::unique_ptr<PostgreSQL_Database> database_;
  PostgreSQL_Row_Writer rows_;
};

}  // namespace kuv::vemora::embedded_server
