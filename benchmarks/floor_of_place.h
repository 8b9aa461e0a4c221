// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <string_view>

#include "benchmarks/floor.h"
#include "benchmarks/postgresql_floor.h"

namespace kuv::benchmarks {

/// Where floors are measured: in a folder, or on a PostgreSQL server, by the beginning of its URLs.
class Floor_Place {
 public:
  explicit Floor_Place(std::string place) : place_(std::move(place)) {}

  bool is_postgresql() const { return place_.rfind("postgresql://", 0) == 0; }

  /// Both answer the seconds.
  double write(const Plain_Rows& rows) const {
    return is_postgresql() ? write_postgresql_floor(url(), rows) : write_floor(path(), rows);
  }
  double read(vemora::Trigger_Config_State& state) const {
    return is_postgresql() ? read_postgresql_floor(url(), state) : read_floor(path(), state);
  }

 private:
  std::string url() const { return place_ + "bench_floor"; }
  std::string path() const { return place_ + "/floor.db"; }

  std::string place_;
};

}  // namespace kuv::benchmarks
