// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora {

/// The cameras of the site. Every list comes in ascending order of camera id, without duplicates
/// and without null pointers. Called while a trigger is processed: an operation that throws costs
/// that trigger, see Repository.
class VEMORA_API Camera_Repository {
 public:
  /// No pointer in it is null.
  using Camera_List = std::vector<std::shared_ptr<camera>>;

  virtual ~Camera_Repository() = default;

  /// The cameras whose tags satisfy at least one of `terms` (Tag_Filter::matches_any); with no
  /// terms, all.
  virtual Camera_List get_cameras_matching_tags(
      const std::set<ODB_Utils::Tag_Search_Term>& terms) = 0;

  /// Those of `cameras` (all, when the list is empty) that no subscription to `onvif_topic`
  /// exists for yet, whether or not they can send it. Subscriptions that the pass added a moment
  /// ago exist. The library reads the capabilities of the cameras answered.
  virtual Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                                       const Camera_List& cameras) = 0;

  /// Those of `cameras` (all, when the list is empty) that take part in object detection.
  virtual Camera_List get_object_detection_cameras(const Camera_List& cameras) = 0;

  /// Those of `cameras` (all, when the list is empty) that take part in motion detection.
  virtual Camera_List get_motion_detection_cameras(const Camera_List& cameras) = 0;
};

}  // namespace kuv::vemora
