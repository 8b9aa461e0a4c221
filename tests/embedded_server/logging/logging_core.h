// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>

#include "vemora/platform/logging/severity.h"

namespace kuv::test {

/// Nobody's lines are taken while it lives.
struct Logging_Disabled {
  Logging_Disabled() { boost::log::core::get()->set_logging_enabled(false); }
  ~Logging_Disabled() { boost::log::core::get()->set_logging_enabled(true); }
};

/// Lines below a level are not taken while it lives.
struct Lines_Filtered_Below {
  explicit Lines_Filtered_Below(logging::severity_level least) {
    boost::log::core::get()->set_filter([least](const boost::log::attribute_value_set& values) {
      return boost::log::extract_or_throw<logging::severity_level>("Severity", values) >= least;
    });
  }
  ~Lines_Filtered_Below() { boost::log::core::get()->reset_filter(); }
};

}  // namespace kuv::test
