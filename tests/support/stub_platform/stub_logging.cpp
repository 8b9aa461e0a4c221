// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include "support/stub_platform/stub_platform.h"
#include "vemora/platform/logging/source.h"

namespace stub = kuv::test::stub_platform;

namespace kuv::logging {

void Source::init_(const std::string& channel, const std::string& scope) {
  stub::called(stub::Function::init_log_source, fmt::format("init_ \"{}\" \"{}\"", channel, scope));
  channel_ = channel;
  scope_ = scope;
  logger_->channel(channel);
}

}  // namespace kuv::logging
