// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/camera_repository.h"

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_Cameras : public Camera_Repository {
 public:
  explicit Stored_Cameras(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  Camera_List get_cameras_matching_tags(
      const std::set<ODB_Utils::Tag_Search_Term>& terms) override {
    return read(database_, [&](Site_Index& site) { return site.cameras().matching(terms); });
  }

  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    return read(database_, [&](Site_Index& site) {
      const auto covered = site.subscriptions().cameras_on(onvif_topic);
      return site.cameras().select(
          cameras, [&](const camera& record) { return !covered.contain(record.id); });
    });
  }

  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    return read(database_, [&](Site_Index& site) {
      return site.cameras().select(cameras,
                                   [](const camera& record) { return record.object_detection; });
    });
  }

  Camera_List get_motion_detection_cameras(const Camera_List& cameras) override {
    return read(database_, [&](Site_Index& site) {
      return site.cameras().select(cameras,
                                   [](const camera& record) { return record.motion_detection; });
    });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Camera_Repository> make_camera_repository(std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Cameras>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
