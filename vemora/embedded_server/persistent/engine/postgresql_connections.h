// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <odb/pgsql/connection-factory.hxx>
#include <string>
#include <string_view>

namespace kuv::vemora::embedded_server {

/// What the server calls it when a lock was not to be had in the time that the connection has.
inline constexpr std::string_view lock_not_available = "55P03";

/// The answer to a statement.
using PostgreSQL_Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

/// Throws what ODB would where `result` says that a statement failed; hands it through otherwise.
PostgreSQL_Result require_success(odb::pgsql::connection& connection, PGresult* result);

/// Runs statements that take no parameters, all in one round trip; answers the last one's result.
PostgreSQL_Result run_statements(odb::pgsql::connection& connection, const std::string& sql);

/// The first value of the first row.
std::string first_value(const PostgreSQL_Result& result);

std::string quoted_identifier(odb::pgsql::connection& connection, const std::string& name);

/// Opens the connections to one schema, each with the settings that a pass relies on.
class PostgreSQL_Connections : public odb::pgsql::connection_pool_factory {
 public:
  PostgreSQL_Connections(std::string schema, std::chrono::milliseconds lock_wait)
      : schema_(std::move(schema)), lock_wait_(lock_wait) {}

 protected:
  pooled_connection_ptr create() override;

 private:
  std::string schema_;
  std::chrono::milliseconds lock_wait_;
};

}  // namespace kuv::vemora::embedded_server
