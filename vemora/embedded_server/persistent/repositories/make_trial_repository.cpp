// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <utility>

#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"
#include "vemora/embedded_server/persistent/trial_repository.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Whether the last write of the pass is done.
using Is_Over = std::shared_ptr<bool>;

class Subscriptions_Of_A_Trial : public Metadata_Event_Subscription_Repository {
 public:
  Subscriptions_Of_A_Trial(std::unique_ptr<Metadata_Event_Subscription_Repository> stored,
                           Is_Over is_over)
      : stored_(std::move(stored)), is_over_(std::move(is_over)) {}

  bool add(const std::shared_ptr<metadata_event_subscription>& added) override {
    return stored_->add(added);
  }

  bool update(const std::shared_ptr<metadata_event_subscription>& changed) override {
    return stored_->update(changed);
  }

  Subscription_List Get_Matching_Subscriptions(
      const Get_Matching_Subscriptions_Params& params) override {
    return stored_->Get_Matching_Subscriptions(params);
  }

  Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) override {
    return *is_over_ ? Subscription_List() : stored_->get_stale(live_trigger_ids);
  }

  void delete_stale() override { stored_->delete_stale(); }

 private:
  std::unique_ptr<Metadata_Event_Subscription_Repository> stored_;
  Is_Over is_over_;
};

class ETA_Cameras_Of_A_Trial : public ETA_Camera_Repository {
 public:
  ETA_Cameras_Of_A_Trial(std::unique_ptr<ETA_Camera_Repository> stored, Is_Over is_over)
      : stored_(std::move(stored)), is_over_(std::move(is_over)) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    return stored_->get_by_camera_id(camera_id);
  }

  bool add(const std::shared_ptr<eta_camera>& added) override { return stored_->add(added); }

  bool update(const std::shared_ptr<eta_camera>& changed) override {
    return stored_->update(changed);
  }

  Record_List get(const Get_Params& params) override { return stored_->get(params); }

  Record_List get_all() override { return *is_over_ ? Record_List() : stored_->get_all(); }

  /// The last write of a pass.
  void delete_stale() override {
    stored_->delete_stale();
    *is_over_ = true;
  }

 private:
  std::unique_ptr<ETA_Camera_Repository> stored_;
  Is_Over is_over_;
};

}  // namespace

std::shared_ptr<Repository> make_trial_repository(const std::shared_ptr<Database>& database) {
  const auto is_over = std::make_shared<bool>(false);
  return std::make_shared<Repository>(
      make_camera_repository(database), make_server_repository(database),
      make_metadata_event_category_repository(database),
      std::make_unique<Subscriptions_Of_A_Trial>(
          make_metadata_event_subscription_repository(database), is_over),
      make_trigger_repository(database), make_schedule_repository(database),
      std::make_unique<ETA_Cameras_Of_A_Trial>(make_eta_camera_repository(database), is_over));
}

}  // namespace kuv::vemora::embedded_server
