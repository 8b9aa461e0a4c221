// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <odb/sqlite/connection-factory.hxx>

#include "vemora/embedded_server/persistent/engine/sqlite_files.h"

namespace kuv::vemora::embedded_server {

/// Opens the connections to an SQLite file, each with the settings that a pass relies on.
class SQLite_Connections : public odb::sqlite::connection_pool_factory {
 public:
  SQLite_Connections(SQLite_Files& files, std::chrono::milliseconds lock_wait)
      : files_(files), lock_wait_(lock_wait) {}

 protected:
  pooled_connection_ptr create() override;

 private:
  SQLite_Files& files_;
  std::chrono::milliseconds lock_wait_;
};

}  // namespace kuv::vemora::embedded_server
