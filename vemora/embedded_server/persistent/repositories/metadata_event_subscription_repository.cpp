// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

#include <algorithm>

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Whether the engine takes every text of the record.
bool fits(Engine& engine, const metadata_event_subscription& record) {
  const auto tag_fits = [&engine](const Tag_Entry& tag) {
    return engine.can_hold({tag.name, tag.info.value.value_or("")});
  };
  const std::string topic = record.onvif_topic.value_or("");
  return engine.can_hold({record.name, topic}) &&
         std::all_of(record.tags.begin(), record.tags.end(), tag_fits);
}

class Stored_Subscriptions : public Metadata_Event_Subscription_Repository {
 public:
  explicit Stored_Subscriptions(std::shared_ptr<Database> database)
      : database_(std::move(database)) {}

  bool add(const std::shared_ptr<metadata_event_subscription>& added) override {
    return write(database_, [&](Site_Index& site) {
      return fits(database_->engine(), *added) && site.subscriptions().add(added);
    });
  }

  bool update(const std::shared_ptr<metadata_event_subscription>& changed) override {
    return write(database_, [&](Site_Index& site) { return site.subscriptions().update(changed); });
  }

  Subscription_List Get_Matching_Subscriptions(
      const Get_Matching_Subscriptions_Params& params) override {
    return read(database_, [&](Site_Index& site) { return site.subscriptions().matching(params); });
  }

  Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) override {
    return read(database_, [&](Site_Index& site) {
      return live_trigger_ids.empty() ? site.subscriptions().all()
                                      : site.subscriptions().holding_none_of(live_trigger_ids);
    });
  }

  void delete_stale() override {
    write(database_, [](Site_Index& site) { site.subscriptions().delete_without_triggers(); });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Metadata_Event_Subscription_Repository> make_metadata_event_subscription_repository(
    std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Subscriptions>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
