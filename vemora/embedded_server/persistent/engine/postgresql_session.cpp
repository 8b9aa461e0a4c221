// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_session.h"

#include <poll.h>

#include <array>
#include <odb/pgsql/transaction-impl.hxx>
#include <odb/transaction.hxx>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/other_programs.h"
#include "vemora/embedded_server/persistent/engine/postgresql_commit.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"
#include "vemora/embedded_server/persistent/engine/told_wait.h"

namespace kuv::vemora::embedded_server {
namespace {

/// ODB's transaction, but for its commit.
class Transaction : public odb::pgsql::transaction_impl {
 public:
  Transaction(const odb::pgsql::connection_ptr& connection, std::chrono::milliseconds standby_wait)
      : odb::pgsql::transaction_impl(connection), standby_wait_(standby_wait) {}

  void commit() override { run_commit(connection(), standby_wait_); }

 private:
  std::chrono::milliseconds standby_wait_;
};

/// Waits for the answer to a question that was sent; null if the connection broke.
PGresult* take_answer(PGconn* connection) {
  pollfd socket{PQsocket(connection), POLLIN, 0};
  // However this ends, what follows waits for the answer, or learns what is wrong.
  if (::poll(&socket, 1, static_cast<int>(long_wait.count())) == 0) {
    tell_of_long_wait();
  }
  PGresult* const answer = PQgetResult(connection);
  while (PGresult* const more = answer == nullptr ? nullptr : PQgetResult(connection)) {
    PQclear(more);
  }
  return answer;
}

}  // namespace

PostgreSQL_Session::PostgreSQL_Session(const odb::pgsql::connection_ptr& connection,
                                       std::chrono::milliseconds standby_wait)
    : connection_(connection), standby_wait_(standby_wait) {}

/// The connection goes back among the idle ones, which hold no lock; a broken one is given up, and
/// the server lets go of its locks.
PostgreSQL_Session::~PostgreSQL_Session() {
  if (!locked_) {
    return;
  }
  const PostgreSQL_Result result(PQexec(connection_->handle(), "SELECT pg_advisory_unlock_all()"),
                                 &PQclear);
  if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) {
    connection_->mark_failed();
  }
}

void PostgreSQL_Session::lock(const std::string& schema, std::chrono::milliseconds wait) {
  const std::array<const char*, 1> values{schema.c_str()};
  PGconn* const handle = connection_->handle();
  const int sent = PQsendQueryParams(
      handle, "SELECT pg_advisory_lock(hashtextextended('vemora ' || $1::text, 0))", 1, nullptr,
      values.data(), nullptr, nullptr, 0);
  PGresult* const result = sent == 1 ? take_answer(handle) : nullptr;
  const char* const state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  if (state != nullptr && state == lock_not_available) {
    PQclear(result);
    throw Database_Error(at_work_elsewhere(wait));
  }
  require_success(*connection_, result);
  locked_ = true;
}

odb::transaction_impl* PostgreSQL_Session::begin() {
  return new Transaction(connection_, standby_wait_);
}

void PostgreSQL_Session::commit(odb::transaction& transaction) {
  transaction.commit();
}

}  // namespace kuv::vemora::embedded_server
