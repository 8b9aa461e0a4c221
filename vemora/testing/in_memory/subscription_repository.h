// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>

#include "vemora/platform/repositories/metadata_event_subscription_repository.h"
#include "vemora/testing/in_memory/tables.h"

namespace kuv::test {

class In_Memory_Metadata_Event_Subscription_Repository
    : public Metadata_Event_Subscription_Repository {
 public:
  using Params = Get_Matching_Subscriptions_Params;
  using Row = In_Memory_Tables::Subscription;

  explicit In_Memory_Metadata_Event_Subscription_Repository(
      std::shared_ptr<In_Memory_Tables> tables)
      : tables_(std::move(tables)) {}

  bool add(const std::shared_ptr<metadata_event_subscription>& added) override {
    if (!added->camera || !added->onvif_topic || tables_->cameras.count(added->camera_id()) == 0 ||
        is_taken(added->camera_id(), *added->onvif_topic) ||
        !are_all_stored(*tables_, added->trigger_ids())) {
      return false;
    }
    added->id = take_id(*tables_, tables_->subscriptions);
    added->link_changes = {};
    tables_->subscriptions[added->id] = row_of(*added);
    return true;
  }

  bool update(const std::shared_ptr<metadata_event_subscription>& changed) override {
    const auto found = tables_->subscriptions.find(changed->id);
    return found != tables_->subscriptions.end() &&
           store_links(*tables_, found->second.trigger_ids, changed->link_changes);
  }

  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    return those_that([&params](const Row& row) {
      return trigger_fits(params, row) && kind_fits(params, row) &&
             topics_and_cameras_fit(params, row) && tags_fit(params, row);
    });
  }

  Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) override {
    return those_that([&live_trigger_ids](const Row& row) {
      const bool is_served = std::any_of(
          row.trigger_ids.begin(), row.trigger_ids.end(),
          [&live_trigger_ids](std::uint64_t id) { return live_trigger_ids.count(id) == 1; });
      return live_trigger_ids.empty() || (is_of_topic_kind(row) && !is_served);
    });
  }

  void delete_stale() override {
    auto& rows = tables_->subscriptions;
    for (auto place = rows.begin(); place != rows.end();) {
      const bool is_stale = is_of_topic_kind(place->second) && place->second.trigger_ids.empty();
      place = is_stale ? rows.erase(place) : std::next(place);
    }
  }

 protected:
  static bool is_of_topic_kind(const Row& row) { return row.camera_id && row.onvif_topic; }
  static bool is_of_generic_kind(const Row& row) { return !row.camera_id && !row.onvif_topic; }

  static bool trigger_fits(const Params& params, const Row& row) {
    const bool wants_holders = params.trigger_match == Params::Trigger_Match::holding;
    return !params.trigger || (row.trigger_ids.count(params.trigger->id) == 1) == wants_holders;
  }

  static bool kind_fits(const Params& params, const Row& row) {
    return params.kind == Params::Kind::any ||
           (params.kind == Params::Kind::topic ? is_of_topic_kind(row) : is_of_generic_kind(row));
  }

  static bool topics_and_cameras_fit(const Params& params, const Row& row) {
    const bool on_topic = row.onvif_topic && std::count(params.topics.begin(), params.topics.end(),
                                                        *row.onvif_topic) != 0;
    const bool on_camera = params.cameras.empty() ||
                           (row.camera_id && id_set_of(params.cameras).count(*row.camera_id) == 1);
    if (params.topics_and_cameras == Params::Topics_And_Cameras::outside) {
      return !(on_topic && on_camera);
    }
    return (params.topics.empty() || on_topic) && on_camera;
  }

  static bool tags_fit(const Params& params, const Row& row) {
    return satisfy_any(row.tags, params.tags) == (params.tags_match == Params::Tags::matching);
  }

  bool is_taken(std::uint64_t camera_id, const std::string& onvif_topic) const {
    const auto& rows = tables_->subscriptions;
    return std::any_of(rows.begin(), rows.end(), [&](const auto& entry) {
      return entry.second.camera_id == camera_id && entry.second.onvif_topic == onvif_topic;
    });
  }

  /// Of the links that the trigger manager never sets, those that are loaded.
  static Row row_of(const metadata_event_subscription& record) {
    Row row;
    row.name = record.name;
    row.onvif_topic = record.onvif_topic;
    row.camera_id = record.camera_id();
    row.tags = record.tags;
    if (const auto* const category = record.category.get()) {
      row.category_id = category->id;
    }
    for (const auto& link : record.camera_links) {
      if (const auto* const further = link.get()) {
        row.further_camera_ids.push_back(further->id);
      }
    }
    const auto trigger_ids = record.trigger_ids();
    row.trigger_ids = {trigger_ids.begin(), trigger_ids.end()};
    return row;
  }

  template <class Wanted>
  Subscription_List those_that(Wanted is_wanted) const {
    Subscription_List found;
    for (const auto& [id, row] : tables_->subscriptions) {
      if (is_wanted(row)) {
        found.push_back(load_subscription(*tables_, id));
      }
    }
    return found;
  }

  std::shared_ptr<In_Memory_Tables> tables_;
};

}  // namespace kuv::test
