// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/eta_camera_repository.h"

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_ETA_Cameras : public ETA_Camera_Repository {
 public:
  explicit Stored_ETA_Cameras(std::shared_ptr<Database> database)
      : database_(std::move(database)) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    return read(database_, [camera_id](Site_Index& site) {
      return site.eta_cameras().find_by_camera(camera_id);
    });
  }

  bool add(const std::shared_ptr<eta_camera>& added) override {
    return write(database_, [&](Site_Index& site) { return site.eta_cameras().add(added); });
  }

  bool update(const std::shared_ptr<eta_camera>& changed) override {
    return write(database_, [&](Site_Index& site) { return site.eta_cameras().update(changed); });
  }

  Record_List get(const Get_Params& params) override {
    return read(database_, [&](Site_Index& site) { return site.eta_cameras().matching(params); });
  }

  Record_List get_all() override {
    return read(database_, [](Site_Index& site) { return site.eta_cameras().all(); });
  }

  /// The trigger manager calls this after all its other writes.
  void delete_stale() override {
    write_and_commit_pass(database_,
                          [](Site_Index& site) { site.eta_cameras().delete_without_triggers(); });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<ETA_Camera_Repository> make_eta_camera_repository(
    std::shared_ptr<Database> database) {
  return std::make_unique<Stored_ETA_Cameras>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
