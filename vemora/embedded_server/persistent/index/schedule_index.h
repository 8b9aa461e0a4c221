// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>

#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/platform/records/schedule.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// The schedules of the site as a pass sees them.
class Schedule_Index {
 public:
  explicit Schedule_Index(odb::database& database);

  /// Null when there is none.
  std::shared_ptr<schedule> find(std::uint64_t id) const;

 private:
  std::unordered_map<std::uint64_t, std::shared_ptr<schedule>, Id_Hash> records_;
};

}  // namespace kuv::vemora::embedded_server
