// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/camera_repository.h"

namespace kuv::test {

class Mock_Camera_Repository : public vemora::Camera_Repository {
 public:
  using Terms = std::set<vemora::ODB_Utils::Tag_Search_Term>;

  MOCK_METHOD(Camera_List, get_cameras_matching_tags, (const Terms& terms), (override));
  MOCK_METHOD(Camera_List, get_cameras_needing_subscription,
              (const std::string& onvif_topic, const Camera_List& cameras), (override));
  MOCK_METHOD(Camera_List, get_object_detection_cameras, (const Camera_List& cameras), (override));
  MOCK_METHOD(Camera_List, get_motion_detection_cameras, (const Camera_List& cameras), (override));
};

}  // namespace kuv::test
