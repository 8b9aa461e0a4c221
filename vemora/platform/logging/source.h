// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>

#include <boost/log/attributes/mutable_constant.hpp>
#include <boost/log/keywords/severity.hpp>
#include <boost/log/sources/record_ostream.hpp>
#include <boost/log/sources/severity_channel_logger.hpp>
#include <boost/thread/lock_types.hpp>
#include <boost/thread/shared_mutex.hpp>
#include <memory>
#include <string>
#include <utility>

#include "vemora/platform/export.h"
#include "vemora/platform/logging/severity.h"

namespace kuv::logging {

/// The log source of one component: every line goes to one channel, with a severity.
///
/// A line is one text, formatted from a "{}" pattern. Nothing is formatted unless the logging core
/// is enabled and its filters take the record, so a suppressed line costs next to nothing.
///
/// Not thread-safe: the owner writes from one thread at a time. Only the scope text may be read
/// by the core's threads meanwhile.
class Source {
 public:
  /// Knows the channel, and adds the severity to each record.
  using Logger = boost::log::sources::severity_channel_logger<severity_level, std::string>;
  /// The scope text, guarded by a lock of its own.
  using Scope = boost::log::attributes::mutable_constant<std::string, boost::shared_mutex,
                                                         boost::unique_lock<boost::shared_mutex>,
                                                         boost::shared_lock<boost::shared_mutex>>;

  /// A source on `channel`. `scope` is attached to every record as attribute "Scope", so that sinks
  /// can tell instances of one component apart; empty for a component that exists once.
  explicit Source(const std::string& channel, const std::string& scope = {})
      : logger_(std::make_unique<Logger>()), attribute_(std::string()) {
    logger_->add_attribute("Scope", attribute_);
    init_(channel, scope);
  }

  /// Writes one line, the arguments put in place of the "{}" of `pattern`.
  template <class... Arguments>
  void log(severity_level severity, fmt::string_view pattern, const Arguments&... arguments) {
    auto record = logger_->open_record(boost::log::keywords::severity = severity);
    if (!record) {
      return;
    }
    const std::string text = fmt::vformat(pattern, fmt::make_format_args(arguments...));
    boost::log::record_ostream stream(record);
    stream << text;
    stream.flush();
    logger_->push_record(std::move(record));
  }

 private:
  /// Names the channel to the logger and sets the scope text.
  VEMORA_API void init_(const std::string& channel, const std::string& scope);

  std::unique_ptr<Logger> logger_;
  Scope attribute_;
  std::string channel_;
  std::string scope_;
};

}  // namespace kuv::logging
