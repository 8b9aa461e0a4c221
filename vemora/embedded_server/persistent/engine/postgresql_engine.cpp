// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <odb/pgsql/exceptions.hxx>
#include <odb/pgsql/transaction.hxx>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"
#include "vemora/embedded_server/persistent/engine/postgresql_database.h"
#include "vemora/embedded_server/persistent/engine/postgresql_schema_steps.h"
#include "vemora/embedded_server/persistent/engine/postgresql_session.h"
#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

// The server takes up to 2^30 bytes for a value with all that is around it.
constexpr std::size_t bytes_of_a_row = 1'000'000'000;

// A commit waits for a standby as for other processes; but to be confirmed takes its time even to
// those who wait for nobody.
constexpr std::chrono::milliseconds least_standby_wait{1000};

constexpr const char* what_is_in_the_schema =
    "SELECT count(*) > 0, coalesce(bool_or(relname = 'site' AND EXISTS (SELECT FROM pg_attribute "
    "WHERE attrelid = pg_class.oid AND attname = 'schema_version')), false) "
    "FROM pg_class JOIN pg_namespace ON pg_namespace.oid = relnamespace "
    "WHERE nspname = current_schema()";

constexpr std::string_view serialization_failure = "40001";

/// What the server says first, without the word that every fault begins with; then come the
/// statement and where in it the server was.
std::string words_of(const std::string& message) {
  constexpr std::string_view severity = "ERROR:  ";
  const std::size_t begin =
      message.compare(0, severity.size(), severity) == 0 ? severity.size() : 0;
  return message.substr(begin, message.find('\n') - begin);
}

}  // namespace

PostgreSQL_Engine::PostgreSQL_Engine(const std::string& url, std::chrono::milliseconds lock_wait)
    : location_(parse_postgresql_location(url)), lock_wait_(lock_wait) {
  // To the server, no time at all is for ever.
  const auto wait = std::max(lock_wait, std::chrono::milliseconds(1));
  database_ = std::make_unique<PostgreSQL_Database>(
      location_.connection, std::make_unique<PostgreSQL_Connections>(location_.schema, wait));
}

PostgreSQL_Engine::~PostgreSQL_Engine() = default;

odb::database& PostgreSQL_Engine::odb() {
  return *database_;
}

std::unique_ptr<Engine::Session> PostgreSQL_Engine::open_session(Session::Access access) {
  auto session =
      std::make_unique<PostgreSQL_Session>(odb::pgsql::connection_ptr(database_->connection()),
                                           std::max(lock_wait_, least_standby_wait));
  if (access == Session::Access::exclusive) {
    session->lock(location_.schema, lock_wait_);
  }
  return session;
}

/// Whatever is in the schema, and whether that is a site, is asked in one statement: it sees what
/// another process makes there as a whole or not at all.
std::optional<std::int32_t> PostgreSQL_Engine::schema_version() {
  const odb::pgsql::connection_ptr connection(database_->connection());
  const PostgreSQL_Result found = run_statements(*connection, what_is_in_the_schema);
  if (std::string_view(PQgetvalue(found.get(), 0, 0)) == "f") {
    return std::nullopt;
  }
  if (std::string_view(PQgetvalue(found.get(), 0, 1)) == "f") {
    throw Database_Error("the schema holds tables of another program");
  }
  const std::string version =
      first_value(run_statements(*connection, "SELECT max(schema_version) FROM site"));
  return std::atoi(version.c_str());
}

void PostgreSQL_Engine::migrate(std::int32_t present) {
  run_schema_steps(odb::pgsql::transaction::current().connection(), location_.schema, present,
                   lock_wait_);
}

bool PostgreSQL_Engine::can_hold(std::initializer_list<std::string_view> texts) {
  std::size_t size = 0;
  for (const std::string_view text : texts) {
    size += text.size();
  }
  return size <= bytes_of_a_row &&
         std::all_of(texts.begin(), texts.end(), [](std::string_view text) {
           return text.find('\0') == std::string_view::npos && is_utf8(text);
         });
}

bool PostgreSQL_Engine::holds_transaction() {
  return odb::transaction::has_current() &&
         PQtransactionStatus(odb::pgsql::transaction::current().connection().handle()) ==
             PQTRANS_INTRANS;
}

std::string PostgreSQL_Engine::describe(const std::exception& fault) {
  if (dynamic_cast<const odb::connection_lost*>(&fault) != nullptr) {
    return "the connection to the server was lost";
  }
  if (dynamic_cast<const odb::deadlock*>(&fault) != nullptr) {
    return changed_by_another_program();
  }
  const auto* const refused = dynamic_cast<const odb::pgsql::database_exception*>(&fault);
  if (refused == nullptr) {
    return fault.what();
  }
  if (refused->sqlstate() == lock_not_available) {
    return locked_by_another_program(lock_wait_);
  }
  return refused->sqlstate() == serialization_failure ? changed_by_another_program()
                                                      : words_of(refused->message());
}

}  // namespace kuv::vemora::embedded_server
