// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/repositories/trigger_repository.h"
#include "vemora/testing/in_memory/tables.h"

namespace kuv::test {

class In_Memory_Trigger_Repository : public Trigger_Repository {
 public:
  explicit In_Memory_Trigger_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    return load_trigger(*tables_, id);
  }

  bool add(const std::shared_ptr<trigger>& added) override {
    return tables_->triggers.count(added->id) == 0 && store_row(*added);
  }

  bool update(const std::shared_ptr<trigger>& changed) override {
    return tables_->triggers.count(changed->id) == 1 && store_row(*changed);
  }

  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    In_Memory_Tables::Ids dead;
    for (const auto& [id, row] : tables_->triggers) {
      if (kept.count(id) == 0) {
        dead.insert(id);
      }
    }
    for (const std::uint64_t id : dead) {
      delete_with_links(id);
    }
  }

  void delete_all() override { delete_all_except({}); }

 protected:
  /// Refused when one of the schedules is not stored.
  bool store_row(const trigger& record) {
    In_Memory_Tables::Trigger row{record.name, {}, record.sources};
    for (const Trigger_Mapping_Entry& entry : record.schedules) {
      if (tables_->schedules.count(entry.schedule->id) == 0) {
        return false;
      }
      row.schedule_ids.insert(entry.schedule->id);
    }
    tables_->triggers[record.id] = row;
    return true;
  }

  void delete_with_links(std::uint64_t id) {
    tables_->triggers.erase(id);
    for (auto& [subscription_id, row] : tables_->subscriptions) {
      row.trigger_ids.erase(id);
    }
    for (auto& [detection_id, row] : tables_->detections) {
      row.trigger_ids.erase(id);
    }
  }

  std::shared_ptr<In_Memory_Tables> tables_;
};

}  // namespace kuv::test
