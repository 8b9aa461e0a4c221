// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/trigger_repository.h"

#include <algorithm>

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"
#include "vemora/embedded_server/persistent/stored_texts.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Whether the engine takes every text of the record.
bool fits(Engine& engine, const trigger& record) {
  bool fits = true;
  for_each_stored_text(record.name, record.sources,
                       [&](const std::string& text) { fits = fits && engine.can_hold({text}); });
  return fits;
}

bool schedules_are_stored(Site_Index& site, const trigger& record) {
  return std::all_of(record.schedules.begin(), record.schedules.end(),
                     [&site](const Trigger_Mapping_Entry& entry) {
                       return site.schedules().find(entry.schedule->id) != nullptr;
                     });
}

class Stored_Triggers : public Trigger_Repository {
 public:
  explicit Stored_Triggers(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    return read(database_, [id](Site_Index& site) { return site.triggers().find(id); });
  }

  bool add(const std::shared_ptr<trigger>& added) override {
    return write(database_, [&](Site_Index& site) {
      return is_acceptable(site, *added) && site.add_trigger(added);
    });
  }

  bool update(const std::shared_ptr<trigger>& changed) override {
    return write(database_, [&](Site_Index& site) {
      if (!site.triggers().contains(changed->id)) {
        return false;
      }
      if (!is_acceptable(site, *changed)) {
        site.restore_trigger(changed->id);
        return false;
      }
      site.triggers().replace(changed);
      return true;
    });
  }

  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    write(database_, [&](Site_Index& site) {
      const std::set<std::uint64_t> stored = site.triggers().ids();
      std::set<std::uint64_t> dead;
      std::set_difference(stored.begin(), stored.end(), kept.begin(), kept.end(),
                          std::inserter(dead, dead.end()));
      site.delete_triggers(dead);
    });
  }

  void delete_all() override { delete_all_except({}); }

 private:
  bool is_acceptable(Site_Index& site, const trigger& record) {
    return fits(database_->engine(), record) && schedules_are_stored(site, record);
  }

  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Trigger_Repository> make_trigger_repository(std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Triggers>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
