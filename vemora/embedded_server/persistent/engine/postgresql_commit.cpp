// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_commit.h"

#include <fmt/format.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <odb/exceptions.hxx>
#include <odb/pgsql/database.hxx>
#include <string>
#include <string_view>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"

namespace kuv::vemora::embedded_server {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// From one look at what a commit waits for to the next.
constexpr milliseconds between_looks{500};

std::string_view field(const PGresult* notice, int code) {
  const char* const text = PQresultErrorField(notice, code);
  return text != nullptr ? text : "";
}

/// Whether the server says that it no longer waits for a standby: its words may be of any language,
/// and a trigger of somebody else's may warn as well. Servers that do not tell who warns are taken
/// at the worst.
bool tells_of_replication(const PGresult* notice) {
  const std::string_view function = field(notice, PG_DIAG_SOURCE_FUNCTION);
  return field(notice, PG_DIAG_SEVERITY_NONLOCALIZED) == "WARNING" &&
         (function.empty() || function == "SyncRepWaitForLSN");
}

/// Hears what the server says beside its answers, as long as it lives.
class Notices {
 public:
  explicit Notices(PGconn* handle)
      : handle_(handle), before_(PQsetNoticeReceiver(handle, &receive, this)) {}
  ~Notices() { PQsetNoticeReceiver(handle_, before_, nullptr); }
  Notices(const Notices&) = delete;
  Notices& operator=(const Notices&) = delete;

  bool told_of_replication() const { return told_of_replication_; }

 private:
  static void receive(void* notices, const PGresult* notice) {
    auto& self = *static_cast<Notices*>(notices);
    if (tells_of_replication(notice)) {
      self.told_of_replication_ = true;
    } else {
      self.before_(nullptr, notice);
    }
  }

  PGconn* handle_;
  PQnoticeReceiver before_;
  bool told_of_replication_ = false;
};

/// What another connection sees of this one.
bool waits_for_standby(odb::pgsql::connection& connection) {
  try {
    const odb::pgsql::connection_ptr other(connection.database().connection());
    const PostgreSQL_Result found = run_statements(
        *other,
        fmt::format("SELECT FROM pg_stat_activity WHERE pid = {} AND wait_event = 'SyncRep'",
                    PQbackendPID(connection.handle())));
    return PQntuples(found.get()) != 0;
  } catch (const std::exception&) {
    return false;  // it is looked again
  }
}

/// What runs on a connection ends early; where nothing does any more, nothing happens.
void cancel(PGconn* handle) {
  const std::unique_ptr<PGcancel, decltype(&PQfreeCancel)> request(PQgetCancel(handle),
                                                                   &PQfreeCancel);
  std::array<char, 256> complaint{};
  PQcancel(request.get(), complaint.data(),
           complaint.size());  // where it failed, it is tried again
}

/// Until the server has said something, but no longer than that. Answers whether it is still there.
bool wait_for_input(PGconn* handle, Clock::time_point longest) {
  const auto wait = std::chrono::ceil<milliseconds>(longest - Clock::now());
  pollfd socket{PQsocket(handle), POLLIN, 0};
  const int heard = poll(&socket, 1, static_cast<int>(std::max<std::int64_t>(0, wait.count())));
  return heard <= 0 || PQconsumeInput(handle) != 0;
}

/// One COMMIT, from its sending to its answer.
class Commit {
 public:
  Commit(odb::pgsql::connection& connection, milliseconds standby_wait)
      : connection_(connection),
        handle_(connection.handle()),
        notices_(handle_),
        next_look_(sent_ + standby_wait) {}

  void run() {
    if (PQstatus(handle_) != CONNECTION_OK) {
      connection_.mark_failed();
      throw odb::connection_lost();  // before the commit was asked for
    }
    PostgreSQL_Result answer = carry_out();
    if (notices_.told_of_replication()) {
      throw Commit_Not_Known(end_of_the_wait(), Commit_Not_Known::Known::committed_here);
    }
    try {
      answer = require_success(connection_, answer.release());
    } catch (const odb::connection_lost&) {
      throw Commit_Not_Known("the connection to the server was lost");
    }
    if (std::string_view(PQcmdStatus(answer.get())) != "COMMIT") {
      throw Database_Error("the server rolled the transaction back");
    }
  }

 private:
  PostgreSQL_Result carry_out() {
    PostgreSQL_Result answer(nullptr, &PQclear);
    if (PQsendQuery(handle_, "COMMIT") == 0) {
      return answer;
    }
    while (PQisBusy(handle_) != 0 && wait_for_input(handle_, next_look_)) {
      look_at_the_clock();
    }
    while (PGresult* const next = PQgetResult(handle_)) {
      answer.reset(next);
    }
    return answer;
  }

  void look_at_the_clock() {
    if (Clock::now() < next_look_ || PQisBusy(handle_) == 0) {
      return;
    }
    if (waits_for_standby(connection_)) {
      gave_up_ = true;
      cancel(handle_);
    }
    next_look_ = Clock::now() + between_looks;
  }

  std::string end_of_the_wait() {
    if (PQstatus(handle_) != CONNECTION_OK) {
      connection_.mark_failed();
      return "the server ended the connection while the commit waited for a standby";
    }
    const auto waited = std::chrono::duration_cast<milliseconds>(Clock::now() - sent_);
    return gave_up_
               ? fmt::format("no standby confirmed the commit; gave up after {} ms", waited.count())
               : fmt::format("the commit's wait for a standby was cancelled after {} ms",
                             waited.count());
  }

  odb::pgsql::connection& connection_;
  PGconn* handle_;
  Notices notices_;
  Clock::time_point sent_ = Clock::now();
  Clock::time_point next_look_;
  bool gave_up_ = false;
};

}  // namespace

void run_commit(odb::pgsql::connection& connection, std::chrono::milliseconds standby_wait) {
  Commit(connection, standby_wait).run();
}

}  // namespace kuv::vemora::embedded_server
