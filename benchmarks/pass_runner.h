// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
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

/// What is measured of a pass. Metering takes time, so it is one or the other.
enum class Measuring { time, heap };

/// What became of one pass that was measured.
struct Measured_Pass {
  double seconds = 0;         ///< until everything is released again; where time is measured
  std::size_t peak_heap = 0;  ///< above what was there before; where the heap is measured
  std::size_t links_written = 0;
  std::size_t links_deleted = 0;
  std::size_t errors = 0;
  std::size_t round_trips = 0;  ///< to a database server; an embedded one has none
};

/// A trigger manager over a database, whose pusher discards what it is given.
class Pass_Runner {
 public:
  explicit Pass_Runner(const std::string& location);
  ~Pass_Runner();

  const std::shared_ptr<vemora::embedded_server::Database>& database() { return database_; }

  // Each throws std::runtime_error when the pass ends otherwise than it should.

  Measured_Pass update(const Json::Value& config, Measuring measuring,
                       bool expected_success = true);
  Measured_Pass refresh(Measuring measuring);

 private:
  class Services;

  Measured_Pass run(Measuring measuring, const std::function<bool()>& call, bool expected_success);
  void make_manager();

  std::shared_ptr<vemora::embedded_server::Database> database_;
  std::unique_ptr<Services> services_;
  std::unique_ptr<vemora::Vemora_Trigger_Manager> manager_;
};

}  // namespace kuv::benchmarks
