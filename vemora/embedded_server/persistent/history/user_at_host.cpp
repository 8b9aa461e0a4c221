// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/user_at_host.h"

#include <pwd.h>
#include <unistd.h>

#include <array>

#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::embedded_server {
namespace {

std::string user() {
  std::array<char, 16384> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  const uid_t id = ::geteuid();
  const bool is_known =
      ::getpwuid_r(id, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
  return is_known ? std::string(entry.pw_name) : std::to_string(id);
}

std::string host() {
  std::array<char, 256> name{};  // the last one stays zero, also if the name is cut off
  return ::gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : "?";
}

}  // namespace

std::string user_at_host() {
  return printable(user()) + "@" + printable(host());
}

}  // namespace kuv::vemora::embedded_server
