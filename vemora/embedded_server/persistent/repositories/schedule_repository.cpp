// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/schedule_repository.h"

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_Schedules : public Schedule_Repository {
 public:
  explicit Stored_Schedules(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override {
    return read(database_, [id](Site_Index& site) { return site.schedules().find(id); });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Schedule_Repository> make_schedule_repository(std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Schedules>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
