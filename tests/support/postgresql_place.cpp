// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <libpq-fe.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <stdexcept>

#include "support/database_place.h"

namespace kuv::test {
namespace {

constexpr Oid boolean_type = 16;

/// What the cluster's start noted down.
std::string note(const std::string& name) {
  std::ifstream file(std::string(VEMORA_POSTGRESQL_CLUSTER) + "/" + name);
  std::string text;
  if (!std::getline(file, text)) {
    throw std::runtime_error("no PostgreSQL runs for the tests: ctest starts one");
  }
  return text;
}

std::string cluster_url() {
  return fmt::format("postgresql://tester@/postgres?host={}&port={}", note("folder"), note("port"));
}

/// Test processes run side by side.
std::string unused_name() {
  static std::atomic<int> count{0};
  return fmt::format("test_{}_{}", ::getpid(), ++count);
}

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

Result run(PGconn* connection, const std::string& sql) {
  Result result(PQexec(connection, sql.c_str()), &PQclear);
  const ExecStatusType status = PQresultStatus(result.get());
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) {
    throw std::runtime_error(PQerrorMessage(connection));
  }
  return result;
}

/// As the other engines say it, which have no truth values.
std::string text_of(PGresult* result, int row, int column) {
  const std::string text(PQgetvalue(result, row, column),
                         static_cast<std::size_t>(PQgetlength(result, row, column)));
  return PQftype(result, column) == boolean_type ? (text == "t" ? "1" : "0") : text;
}

}  // namespace

PostgreSQL_Place::PostgreSQL_Place() : schema_(unused_name()) {}

PostgreSQL_Place::~PostgreSQL_Place() {
  try {
    PostgreSQL_Program("public").execute("DROP SCHEMA IF EXISTS " + schema_ + " CASCADE");
  } catch (const std::exception&) {
    // the cluster goes at the end, with all that is in it
  }
}

std::string PostgreSQL_Place::location() const {
  return cluster_url() + "&schema=" + schema_;
}

std::unique_ptr<Foreign_Program> PostgreSQL_Place::foreign_program() {
  return std::make_unique<PostgreSQL_Program>(schema_);
}

PostgreSQL_Program::PostgreSQL_Program(std::string schema)
    : schema_(std::move(schema)), connection_(PQconnectdb(cluster_url().c_str())) {
  try {
    execute("SET client_min_messages = warning; SET search_path = " + schema_);
  } catch (const std::exception&) {
    PQfinish(connection_);
    throw;
  }
}

PostgreSQL_Program::~PostgreSQL_Program() {
  PQfinish(connection_);
}

void PostgreSQL_Program::execute(const std::string& sql) {
  run(connection_, sql);
}

Rows PostgreSQL_Program::query(const std::string& sql) {
  const Result result = run(connection_, sql);
  Rows rows;
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    Row& cells = rows.emplace_back();
    for (int column = 0; column < PQnfields(result.get()); ++column) {
      const bool null = PQgetisnull(result.get(), row, column) != 0;
      cells.push_back(null ? std::nullopt : std::make_optional(text_of(result.get(), row, column)));
    }
  }
  return rows;
}

std::vector<std::string> PostgreSQL_Program::tables() {
  std::vector<std::string> names;
  for (const Row& row : query(
           "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() "
           "ORDER BY table_name COLLATE \"C\"")) {
    names.push_back(row.at(0).value());
  }
  return names;
}

}  // namespace kuv::test
