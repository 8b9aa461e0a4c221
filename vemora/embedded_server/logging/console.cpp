// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/logging/console.h"

#include <algorithm>
#include <array>
#include <boost/core/null_deleter.hpp>
#include <boost/date_time/posix_time/posix_time_io.hpp>
#include <boost/log/attributes/clock.hpp>
#include <boost/log/core.hpp>
#include <boost/log/expressions.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/support/date_time.hpp>
#include <boost/make_shared.hpp>
#include <mutex>
#include <string>

#include "vemora/embedded_server/texts/printable.h"

namespace kuv::logging {
namespace {

using vemora::embedded_server::printable;

namespace expressions = boost::log::expressions;
using Backend = boost::log::sinks::text_ostream_backend;
using Sink = boost::log::sinks::synchronous_sink<Backend>;

constexpr std::array<std::string_view, 7> names{"trace",   "debug", "detail", "info",
                                                "warning", "error", "fatal"};

/// One record is one line, whatever the names in it hold.
void format(const boost::log::record_view& record, boost::log::formatting_ostream& stream) {
  const auto time = boost::log::extract<boost::posix_time::ptime>("TimeStamp", record);
  const auto severity = boost::log::extract<severity_level>("Severity", record);
  const auto channel = boost::log::extract<std::string>("Channel", record);
  if (time) {
    stream << boost::posix_time::to_iso_extended_string(*time) << ' ';
  }
  const auto unstored = boost::log::extract<bool>("Unstored", record);
  const auto text = boost::log::extract<std::string>("Message", record);
  stream << '[' << (severity ? name_of(*severity) : "-") << "] "
         << printable(channel ? *channel : std::string_view())
         << (unstored && *unstored ? " (nothing is stored): " : ": ")
         << printable(text ? *text : std::string_view());
}

boost::shared_ptr<Sink> make_sink(std::ostream& stream, severity_level least) {
  auto backend = boost::make_shared<Backend>();
  backend->add_stream(boost::shared_ptr<std::ostream>(&stream, boost::null_deleter()));
  backend->auto_flush(true);
  auto sink = boost::make_shared<Sink>(backend);
  sink->set_filter(expressions::attr<severity_level>("Severity") >= least);
  sink->set_formatter(&format);
  return sink;
}

}  // namespace

std::optional<severity_level> parse_severity(std::string_view name) {
  const auto* const found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) {
    return std::nullopt;
  }
  return static_cast<severity_level>(found - names.begin());
}

std::string_view name_of(severity_level severity) {
  const auto index = static_cast<std::size_t>(severity);
  return index < names.size() ? names[index] : "-";
}

void log_to(std::ostream& stream, std::optional<severity_level> least) {
  static std::mutex mutex;
  static boost::shared_ptr<Sink> current;
  const std::lock_guard<std::mutex> lock(mutex);
  const auto core = boost::log::core::get();
  if (current) {
    core->remove_sink(current);
    current.reset();
  }
  core->set_logging_enabled(least.has_value());
  if (least) {
    core->add_global_attribute("TimeStamp", boost::log::attributes::local_clock());
    current = make_sink(stream, *least);
    core->add_sink(current);
  }
}

}  // namespace kuv::logging
