// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/logging/unstored_lines.h"

#include <boost/log/attributes/constant.hpp>
#include <boost/log/core.hpp>

namespace kuv::logging {

Unstored_Lines::Unstored_Lines()
    : added_(boost::log::core::get()->add_thread_attribute(
          "Unstored", boost::log::attributes::constant<bool>(true))) {}

Unstored_Lines::~Unstored_Lines() {
  if (added_.second) {
    boost::log::core::get()->remove_thread_attribute(added_.first);
  }
}

}  // namespace kuv::logging
