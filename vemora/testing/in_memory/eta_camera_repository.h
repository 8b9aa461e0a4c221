// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/testing/in_memory/tables.h"

namespace kuv::test {

class In_Memory_ETA_Camera_Repository : public ETA_Camera_Repository {
 public:
  explicit In_Memory_ETA_Camera_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    const Record_List found = those_that(
        [camera_id](const In_Memory_Tables::Detection& row) { return row.camera_id == camera_id; });
    return found.empty() ? nullptr : found.front();
  }

  bool add(const std::shared_ptr<eta_camera>& added) override {
    if (!added->camera || tables_->cameras.count(added->camera_id()) == 0 ||
        get_by_camera_id(added->camera_id())) {
      return false;
    }
    In_Memory_Tables::Detection row{added->camera_id(), {}};
    for (const std::shared_ptr<trigger>& held : added->triggers) {
      row.trigger_ids.insert(held->id);
    }
    if (!are_all_stored(*tables_, row.trigger_ids)) {
      return false;
    }
    added->id = take_id(*tables_, tables_->detections);
    added->link_changes = {};
    tables_->detections[added->id] = row;
    return true;
  }

  bool update(const std::shared_ptr<eta_camera>& changed) override {
    const auto found = tables_->detections.find(changed->id);
    return found != tables_->detections.end() &&
           store_links(*tables_, found->second.trigger_ids, changed->link_changes);
  }

  Record_List get(const Get_Params& params) override {
    const In_Memory_Tables::Ids named = id_set_of(params.cameras);
    return those_that([&params, &named](const In_Memory_Tables::Detection& row) {
      const bool is_held = !params.trigger || row.trigger_ids.count(params.trigger->id) == 1;
      const bool is_named = named.count(row.camera_id) == 1;
      const bool wants_named = params.cameras_match == Get_Params::Cameras::matching;
      return is_held && (named.empty() || is_named == wants_named);
    });
  }

  Record_List get_all() override {
    return those_that([](const In_Memory_Tables::Detection&) { return true; });
  }

  void delete_stale() override {
    for (const auto& record : get_all()) {
      if (record->triggers.empty()) {
        tables_->detections.erase(record->id);
      }
    }
  }

 protected:
  template <class Wanted>
  Record_List those_that(Wanted is_wanted) const {
    Record_List found;
    for (const auto& [id, row] : tables_->detections) {
      if (is_wanted(row)) {
        found.push_back(load_detection(*tables_, id));
      }
    }
    return found;
  }

  std::shared_ptr<In_Memory_Tables> tables_;
};

}  // namespace kuv::test
