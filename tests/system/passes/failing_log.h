// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "system/passes/pass_model.h"

namespace kuv::test {

/// While it lives, lines that begin so cannot be logged, which ends what they are logged from.
class Failing_Log {
 public:
  explicit Failing_Log(std::vector<std::string> beginnings) : sink_(boost::make_shared<Sink>()) {
    sink_->locked_backend()->beginnings = std::move(beginnings);
    boost::log::core::get()->add_sink(sink_);
  }
  ~Failing_Log() { boost::log::core::get()->remove_sink(sink_); }
  Failing_Log(const Failing_Log&) = delete;
  Failing_Log& operator=(const Failing_Log&) = delete;

 private:
  class Backend
      : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
   public:
    void consume(const boost::log::record_view& record) {
      const auto text = boost::log::extract_or_throw<std::string>("Message", record);
      for (const std::string& beginning : beginnings) {
        if (text.compare(0, beginning.size(), beginning) == 0) {
          throw std::runtime_error("the log is full");
        }
      }
    }

    std::vector<std::string> beginnings;
  };
  using Sink = boost::log::sinks::synchronous_sink<Backend>;

  boost::shared_ptr<Sink> sink_;
};

/// The lines that a subscription is created, for some triggers and cameras.
inline std::vector<std::string> lines_at(const Pass_Model::Snags& snags) {
  std::vector<std::string> lines;
  for (const auto& [trigger_id, camera_id] : snags) {
    lines.push_back(
        fmt::format("Trigger {} | Creating subscription for camera {} ", trigger_id, camera_id));
  }
  return lines;
}

}  // namespace kuv::test
