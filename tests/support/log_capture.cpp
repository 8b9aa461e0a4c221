// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/log_capture.h"

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/core/record_view.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>
#include <iterator>
#include <string_view>
#include <utility>

namespace kuv::test {
namespace {

std::string_view name_of(logging::severity_level severity) {
  constexpr std::string_view names[] = {"trace",   "debug", "detail", "info",
                                        "warning", "error", "fatal"};
  const auto index = static_cast<std::size_t>(severity);
  return index < std::size(names) ? names[index] : "?";
}

/// Throws on a record without severity or channel: every line of ours has both.
Log_Line to_line(const boost::log::record_view& record) {
  return {boost::log::extract_or_throw<logging::severity_level>("Severity", record),
          boost::log::extract_or_throw<std::string>("Channel", record),
          boost::log::extract_or_throw<std::string>("Message", record)};
}

}  // namespace

/// The frontend feeds it, and hands it out to read, under one lock.
class Log_Capture::Backend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
 public:
  void consume(const boost::log::record_view& record) { lines.push_back(to_line(record)); }

  std::vector<Log_Line> lines;
};

struct Log_Capture::Sink : boost::log::sinks::synchronous_sink<Backend> {};

bool operator==(const Log_Line& left, const Log_Line& right) {
  return left.severity == right.severity && left.channel == right.channel &&
         left.message == right.message;
}

std::ostream& operator<<(std::ostream& stream, const Log_Line& line) {
  return stream << '[' << name_of(line.severity) << "] " << line.channel << ": " << line.message;
}

Log_Capture::Log_Capture() : sink_(boost::make_shared<Sink>()) {
  boost::log::core::get()->add_sink(sink_);
}

Log_Capture::~Log_Capture() {
  boost::log::core::get()->remove_sink(sink_);
}

std::vector<Log_Line> Log_Capture::lines() const {
  return sink_->locked_backend()->lines;
}

std::vector<Log_Line> Log_Capture::lines(logging::severity_level severity) const {
  std::vector<Log_Line> chosen;
  for (Log_Line& line : lines()) {
    if (line.severity == severity) {
      chosen.push_back(std::move(line));
    }
  }
  return chosen;
}

std::vector<std::string> Log_Capture::messages() const {
  std::vector<std::string> texts;
  for (Log_Line& line : lines()) {
    texts.push_back(std::move(line.message));
  }
  return texts;
}

}  // namespace kuv::test
