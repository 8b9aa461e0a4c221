#pragma once

#include <json/value.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::benchmarks {

/// What became of one pass that was measured.
struct Measured_Pass {
  double seconds = 0;         ///< from its begin to the storing of its documents
  std::size_t peak_heap = 0;  ///< above what was there before
  std::size_t links_written = 0;
  std::size_t links_deleted = 0;
  std::size_t errors = 0;
};

/// A trigger manager over a database, whose pusher discards what it is given.
class Pass_Runner {
 public:
  explicit Pass_Runner(const std::string& location);
  ~Pass_Runner();

  const std::shared_ptr<vemora::embedded_server::Database>& database() { return database_; }

  /// Throws std::runtime_error when the pass ends otherwise than `expected_success`.
  Measured_Pass update(const Json::Value& config, bool expected_success = true);
  Measured_Pass refresh();

 private:
  class Services;

  Measured_Pass run(const std::function<bool(Measured_Pass&)>& call, bool expected_success);
  void make_manager();

  std::shared_ptr<vemora::embedded_server::Database> database_;
  std::unique_ptr<Services> services_;
  std::unique_ptr<vemora::Vemora_Trigger_Manager> manager_;
};

}  // namespace kuv::benchmarks
