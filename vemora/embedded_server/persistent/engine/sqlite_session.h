// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <cstdint>
#include <odb/sqlite/connection.hxx>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/file_lock.h"

namespace kuv::vemora::embedded_server {

/// One connection, and a turn at the lock file where one was asked for.
class SQLite_Session : public Engine::Session {
 public:
  SQLite_Session(const odb::sqlite::connection_ptr& connection, std::chrono::milliseconds lock_wait)
      : connection_(connection), lock_wait_(lock_wait) {}

  /// Waits for other holders of that lock file, which stands for `model`.
  void lock(const std::string& path, const std::string& model) {
    lock_.emplace(path, model, lock_wait_);
  }

  /// Readers go on during a pass then. The mode is part of the file, which whoever sets it writes,
  /// so no reader does.
  void use_write_ahead_log();

  odb::transaction_impl* begin() override;
  odb::transaction_impl* begin_immediately() override;
  void begin_writing() override;
  void commit(odb::transaction& transaction) override;

 private:
  std::optional<File_Lock> lock_;
  odb::sqlite::connection_ptr connection_;
  std::chrono::milliseconds lock_wait_;
  std::int64_t rows_before_ = 0;  ///< rows that the connection wrote before the transaction
};

}  // namespace kuv::vemora::embedded_server
