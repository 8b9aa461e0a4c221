// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/platform/records/trigger.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

class Schedule_Index;

/// The trigger records as a pass sees them, and what the database holds of them.
class Trigger_Index {
 public:
  /// A trigger before and after; null if it does not exist then.
  struct Change {
    std::shared_ptr<const trigger> stored;
    std::shared_ptr<const trigger> now;
  };

  /// Rows of triggers or schedules that do not exist. No pass leaves such rows; other programs may.
  struct Strays {
    std::vector<rows::Trigger_Source_Row> sources;
    std::vector<rows::Trigger_Schedule> schedules;

    bool empty() const { return sources.empty() && schedules.empty(); }
  };

  Trigger_Index(odb::database& database, const Schedule_Index& schedules);

  /// Ascending by id.
  std::vector<std::shared_ptr<trigger>> all() const;
  /// The same as they were last added or updated, whatever became of the records in memory.
  std::vector<std::shared_ptr<const trigger>> all_accepted() const;
  std::set<std::uint64_t> ids() const;

  std::size_t count() const { return records_.size(); }

  /// Null when there is none.
  std::shared_ptr<trigger> find(std::uint64_t id) const;
  bool contains(std::uint64_t id) const { return records_.count(id) != 0; }

  void insert(const std::shared_ptr<trigger>& added);

  /// Takes over a record's name, schedules and sources.
  void replace(const std::shared_ptr<trigger>& changed);

  /// Forgets a change that was refused: from now on a fresh record with the values before it stands
  /// for the trigger. Answers it.
  std::shared_ptr<trigger> restore(std::uint64_t id);

  void erase(std::uint64_t id);

  /// What differs from the database, ascending by id; taken as stored from then on.
  std::map<std::uint64_t, Change> settle();

  /// What was found astray when the triggers were read; taken as deleted from then on.
  Strays take_strays() { return std::exchange(strays_, {}); }

 private:
  struct Entry {
    std::shared_ptr<trigger> record;
    std::shared_ptr<const trigger> accepted;  ///< its values when it was last added or updated
  };

  void load_sources(odb::database& database);
  void load_schedules(odb::database& database, const Schedule_Index& schedules);
  void note(std::uint64_t id);

  std::map<std::uint64_t, Entry> records_;
  /// What the database holds of the triggers that were touched; null where it holds none.
  std::map<std::uint64_t, std::shared_ptr<const trigger>> touched_;
  Strays strays_;
};

}  // namespace kuv::vemora::embedded_server
