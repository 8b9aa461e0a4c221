#include "vemora/embedded_server/persistent/engine/postgresql_engine.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <odb/pgsql/database.hxx>
#include <odb/pgsql/exceptions.hxx>
#include <odb/pgsql/transaction.hxx>

#include "postgresql_schema.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/broken_rule.h"
#include "vemora/embedded_server/persistent/engine/lock_wait.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"
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
constexpr std::string_view check_violation = "23514";

static_assert(postgresql_schema.size() == current_schema_version);

std::string first_value(const PostgreSQL_Result& result) {
  return PQgetvalue(result.get(), 0, 0);
}

bool is_true(odb::pgsql::connection& connection, const std::string& condition) {
  return first_value(run_statements(connection, "SELECT " + condition)) == "t";
}

constexpr const char* tables_of_the_site =
    "SELECT string_agg(quote_ident(relname), ', ') FROM pg_class JOIN pg_namespace ON "
    "pg_namespace.oid = relnamespace WHERE nspname = current_schema() AND relkind = 'r' AND "
    "pg_has_role(relowner, 'USAGE')";

/// Keeps everybody off all tables at once; false, and the transaction is to be rolled back, when
/// somebody is at one of them. Waiting for one with others in hand would be waiting for readers
/// that wait for those.
bool lock_tables(odb::pgsql::connection& connection) {
  const std::string tables = first_value(run_statements(connection, tables_of_the_site));
  if (tables.empty()) {
    return true;
  }
  const std::string lock = fmt::format("LOCK TABLE {} IN ACCESS EXCLUSIVE MODE NOWAIT", tables);
  PostgreSQL_Result result(PQexec(connection.handle(), lock.c_str()), &PQclear);
  const char* const state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  if (state != nullptr && state == lock_not_available) {
    return false;
  }
  require_success(connection, result.release());
  return true;
}

void run_step(odb::pgsql::connection& connection, const char* step) {
  PostgreSQL_Result result(PQexec(connection.handle(), step), &PQclear);
  const char* const state = PQresultErrorField(result.get(), PG_DIAG_SQLSTATE);
  const char* const rule = PQresultErrorField(result.get(), PG_DIAG_CONSTRAINT_NAME);
  if (state != nullptr && state == check_violation && rule != nullptr) {
    throw Broken_Rule(step, rule);
  }
  require_success(connection, result.release());
}

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
  database_ = std::make_unique<odb::pgsql::database>(
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

void PostgreSQL_Engine::migrate(Session& session) {
  const std::int32_t present = schema_version().value_or(0);
  odb::transaction transaction(session.begin());
  odb::pgsql::connection& connection = odb::pgsql::transaction::current().connection();
  const Lock_Wait wait(lock_wait_);
  while (!lock_tables(connection)) {
    transaction.rollback();
    if (!wait.pause()) {
      throw Database_Error(locked_by_another_program(wait.waited()));
    }
    transaction.reset(session.begin());
  }
  if (is_true(connection, "current_schema() IS NULL")) {
    run_statements(connection, "CREATE SCHEMA " + quoted_identifier(connection, location_.schema));
  }
  for (auto step = static_cast<std::size_t>(present); step < postgresql_schema.size(); ++step) {
    run_step(connection, postgresql_schema[step]);
  }
  run_statements(connection, fmt::format("INSERT INTO site (id, schema_version) VALUES (1, {0}) "
                                         "ON CONFLICT (id) DO UPDATE SET schema_version = {0}",
                                         current_schema_version));
  session.commit(transaction);
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
