// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <exception>
#include <string>

#include "vemora/platform/logging/source.h"

namespace kuv::vemora {

/// Logs why an operation fails. A log that fails too keeps nobody from the operation's answer,
/// which says the same.
inline void log_failed_operation(kuv::logging::Source& logger, const std::string& text) {
  try {
    logger.log(kuv::logging::severity_level::error, "{}", text);
  } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): there is nowhere to say it
  }
}

}  // namespace kuv::vemora
