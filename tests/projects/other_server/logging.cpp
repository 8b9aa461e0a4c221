// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/logging/source.h"

namespace kuv::logging {

void Source::init_(const std::string& channel, const std::string& scope) {
  channel_ = channel;
  scope_ = scope;
  logger_->channel(channel);
}

}  // namespace kuv::logging
