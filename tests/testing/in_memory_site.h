// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "vemora/testing/contract/implementation.h"
#include "vemora/testing/in_memory/repository.h"

namespace kuv::test {

/// A site in the in-memory repository, or in one with a fault. The tables are what is stored, so
/// that a new repository over them is all that reopening takes.
class In_Memory_Site : public Site_Under_Test {
 public:
  /// Puts sub-repositories with a fault in the place of those that have none.
  using Plant = std::function<void(In_Memory_Parts&, const std::shared_ptr<In_Memory_Tables>&)>;

  explicit In_Memory_Site(const Site_Description& site, Plant plant = nullptr)
      : plant_(std::move(plant)) {
    store(site, *tables_);
  }

  Repository& repository() override {
    if (!repository_) {
      In_Memory_Parts parts(tables_);
      if (plant_) {
        plant_(parts, tables_);
      }
      repository_ = make_repository_of(std::move(parts));
    }
    return *repository_;
  }

  bool reopen() override {
    repository_.reset();
    return true;
  }

  std::optional<Stored_Rows> look_behind() override {
    Stored_Rows stored;
    for (const auto& [id, row] : tables_->triggers) {
      stored.trigger_ids.insert(id);
      stored.schedules_of_triggers += row.schedule_ids.size();
      stored.sources_of_triggers += row.sources.size();
    }
    for (const auto& [id, row] : tables_->subscriptions) {
      for (const std::uint64_t trigger_id : row.trigger_ids) {
        stored.subscription_links.insert({id, trigger_id});
      }
    }
    for (const auto& [id, row] : tables_->detections) {
      for (const std::uint64_t trigger_id : row.trigger_ids) {
        stored.detection_links.insert({id, trigger_id});
      }
    }
    return stored;
  }

  bool plant(const Half_Filled_Subscription& planted) override {
    In_Memory_Tables::Subscription& row = tables_->subscriptions[planted.id];
    row.name = planted.name;
    row.camera_id = planted.camera_id;
    row.onvif_topic = planted.onvif_topic;
    return true;
  }

 private:
  Plant plant_;
  std::shared_ptr<In_Memory_Tables> tables_ = std::make_shared<In_Memory_Tables>();
  std::shared_ptr<Repository> repository_;
};

}  // namespace kuv::test
