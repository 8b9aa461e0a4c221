// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>

#include "vemora/platform/repositories/camera_repository.h"
#include "vemora/testing/in_memory/tables.h"

namespace kuv::test {

class In_Memory_Camera_Repository : public Camera_Repository {
 public:
  using Terms = std::set<ODB_Utils::Tag_Search_Term>;

  explicit In_Memory_Camera_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  Camera_List get_cameras_matching_tags(const Terms& terms) override {
    return those_of({}, [&terms](const camera& record) { return satisfy_any(record.tags, terms); });
  }

  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    return those_of(cameras, [this, &onvif_topic](const camera& record) {
      const auto& subscriptions = tables_->subscriptions;
      return std::none_of(subscriptions.begin(), subscriptions.end(), [&](const auto& entry) {
        return entry.second.camera_id == record.id && entry.second.onvif_topic == onvif_topic;
      });
    });
  }

  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    return those_of(cameras, [](const camera& record) { return record.object_detection; });
  }

  Camera_List get_motion_detection_cameras(const Camera_List& cameras) override {
    return those_of(cameras, [](const camera& record) { return record.motion_detection; });
  }

 protected:
  /// The stored cameras that are wanted, of the candidates if there are any.
  template <class Wanted>
  Camera_List those_of(const Camera_List& candidates, Wanted wanted) const {
    const In_Memory_Tables::Ids named = id_set_of(candidates);
    Camera_List found;
    for (const auto& [id, record] : tables_->cameras) {
      if ((named.empty() || named.count(id) == 1) && wanted(record)) {
        found.push_back(std::make_shared<camera>(record));
      }
    }
    return found;
  }

  std::shared_ptr<In_Memory_Tables> tables_;
};

}  // namespace kuv::test
