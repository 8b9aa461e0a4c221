// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/shared_ptr.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "vemora/platform/logging/severity.h"

namespace kuv::test {

/// One record as it reached the logging core's sinks.
struct Log_Line {
  logging::severity_level severity;
  std::string channel;
  std::string message;
};

bool operator==(const Log_Line& left, const Log_Line& right);
std::ostream& operator<<(std::ostream& stream, const Log_Line& line);

/// Collects what is logged while it lives, by whomever and whatever the level, and keeps it off the
/// terminal. The core's own filter and its enabled flag still apply.
class Log_Capture {
 public:
  Log_Capture();
  ~Log_Capture();
  Log_Capture(const Log_Capture&) = delete;
  Log_Capture& operator=(const Log_Capture&) = delete;

  /// The lines so far, in order.
  std::vector<Log_Line> lines() const;

  /// Those of one severity.
  std::vector<Log_Line> lines(logging::severity_level severity) const;

  /// The texts alone.
  std::vector<std::string> messages() const;

 private:
  class Backend;
  struct Sink;
  boost::shared_ptr<Sink> sink_;
};

}  // namespace kuv::test
