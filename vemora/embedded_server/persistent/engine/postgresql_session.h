// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <odb/pgsql/connection.hxx>
#include <string>

#include "vemora/embedded_server/persistent/engine/engine.h"

namespace kuv::vemora::embedded_server {

/// One connection. The lock is held by the connection that the pass writes through, so that a lost
/// connection loses both: nobody writes without the lock.
class PostgreSQL_Session : public Engine::Session {
 public:
  /// A commit is waited for until a standby confirmed it, but no longer than `standby_wait`.
  PostgreSQL_Session(const odb::pgsql::connection_ptr& connection,
                     std::chrono::milliseconds standby_wait);
  ~PostgreSQL_Session() override;
  PostgreSQL_Session(const PostgreSQL_Session&) = delete;
  PostgreSQL_Session& operator=(const PostgreSQL_Session&) = delete;

  /// Waits for other holders of the schema's lock as long as the connection was set up to, which is
  /// `wait`; throws Database_Error then.
  void lock(const std::string& schema, std::chrono::milliseconds wait);

  odb::transaction_impl* begin() override;
  odb::transaction_impl* begin_immediately() override { return begin(); }

  /// Nobody keeps a whole database locked here: it is rows that statements wait for.
  void begin_writing() override {}

  void commit(odb::transaction& transaction) override;

 private:
  odb::pgsql::connection_ptr connection_;
  std::chrono::milliseconds standby_wait_;
  bool locked_ = false;
};

}  // namespace kuv::vemora::embedded_server
