// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "vemora/platform/records/server.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// The servers of the site as a pass sees them, each read when it is first asked for.
class Server_Index {
 public:
  explicit Server_Index(odb::database& database) : database_(database) {}

  /// Null when there is none.
  std::shared_ptr<server> find(std::uint64_t id);

 private:
  odb::database& database_;
  std::map<std::uint64_t, std::shared_ptr<server>> records_;
};

}  // namespace kuv::vemora::embedded_server
