// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/repositories/metadata_event_category_repository.h"
#include "vemora/platform/repositories/schedule_repository.h"
#include "vemora/platform/repositories/server_repository.h"
#include "vemora/testing/in_memory/tables.h"

namespace kuv::test {

class In_Memory_Server_Repository : public Server_Repository {
 public:
  explicit In_Memory_Server_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    return find_record(tables_->servers, id);
  }

 protected:
  std::shared_ptr<In_Memory_Tables> tables_;
};

class In_Memory_Schedule_Repository : public Schedule_Repository {
 public:
  explicit In_Memory_Schedule_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override {
    return find_record(tables_->schedules, id);
  }

 protected:
  std::shared_ptr<In_Memory_Tables> tables_;
};

class In_Memory_Metadata_Event_Category_Repository : public Metadata_Event_Category_Repository {
 public:
  explicit In_Memory_Metadata_Event_Category_Repository(std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) override {
    for (const auto& [id, record] : tables_->categories) {
      if (record.name == name) {
        return find_record(tables_->categories, id);
      }
    }
    return nullptr;
  }

 protected:
  std::shared_ptr<In_Memory_Tables> tables_;
};

}  // namespace kuv::test
