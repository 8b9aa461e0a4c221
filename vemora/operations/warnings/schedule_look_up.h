// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::operations {

/// What keeps a trigger from being active at a schedule.
struct Schedule_Fault {
  const char* code;
  std::string text;  ///< "Schedule 9 does not exist"
  const char* advice;
};

/// The schedules of a site, each looked up once.
class Schedule_Look_Up {
 public:
  explicit Schedule_Look_Up(Repository& repository) : repository_(repository) {}

  /// Null where the schedule can be used.
  const Schedule_Fault* fault_of(std::uint64_t id);

 private:
  Repository& repository_;
  std::map<std::uint64_t, std::unique_ptr<Schedule_Fault>> faults_;
};

}  // namespace kuv::vemora::operations
