#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <odb/sqlite/connection-factory.hxx>

namespace kuv::vemora::embedded_server {

/// Opens the connections to an SQLite file, each with the settings that a pass relies on.
class SQLite_Connections : public odb::sqlite::connection_pool_factory {
 public:
  explicit SQLite_Connections(std::chrono::milliseconds busy_wait) : busy_wait_(busy_wait) {}

 protected:
  pooled_connection_ptr create() override;

 private:
  std::chrono::milliseconds busy_wait_;
};

}  // namespace kuv::vemora::embedded_server
