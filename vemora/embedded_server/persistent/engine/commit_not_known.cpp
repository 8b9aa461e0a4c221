// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"

#include <fmt/format.h>

namespace kuv::vemora::embedded_server {

std::string fate_of(const std::string& what, Commit_Not_Known::Known known) {
  return known == Commit_Not_Known::Known::nothing
             ? fmt::format("it is not known whether {} was kept", what)
             : fmt::format(
                   "{} is committed on this server, and it is not known whether a standby "
                   "has it",
                   what);
}

}  // namespace kuv::vemora::embedded_server
