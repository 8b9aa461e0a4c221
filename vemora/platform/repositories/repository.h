#pragma once

#include <memory>
#include <utility>

#include "vemora/platform/export.h"
#include "vemora/platform/repositories/camera_repository.h"
#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/platform/repositories/metadata_event_category_repository.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"
#include "vemora/platform/repositories/schedule_repository.h"
#include "vemora/platform/repositories/server_repository.h"
#include "vemora/platform/repositories/trigger_repository.h"

namespace kuv::vemora {

/// The database as the trigger manager sees it: one sub-repository for each kind of record, owned
/// here and alive as long as this object. The trigger manager calls them under its own lock, one
/// thread at a time, and assumes nothing about locks of theirs.
class VEMORA_API Repository {
 public:
  /// Takes the seven sub-repositories; none may be null.
  Repository(std::unique_ptr<Camera_Repository> cameras, std::unique_ptr<Server_Repository> servers,
             std::unique_ptr<Metadata_Event_Category_Repository> categories,
             std::unique_ptr<Metadata_Event_Subscription_Repository> subscriptions,
             std::unique_ptr<Trigger_Repository> triggers,
             std::unique_ptr<Schedule_Repository> schedules,
             std::unique_ptr<ETA_Camera_Repository> eta_cameras)
      : cameras_(std::move(cameras)),
        servers_(std::move(servers)),
        categories_(std::move(categories)),
        subscriptions_(std::move(subscriptions)),
        triggers_(std::move(triggers)),
        schedules_(std::move(schedules)),
        eta_cameras_(std::move(eta_cameras)) {}

  Camera_Repository& cameras() { return *cameras_; }
  Server_Repository& servers() { return *servers_; }
  Metadata_Event_Category_Repository& metadata_event_categories() { return *categories_; }
  Metadata_Event_Subscription_Repository& metadata_event_subscriptions() { return *subscriptions_; }
  Trigger_Repository& triggers() { return *triggers_; }
  Schedule_Repository& schedules() { return *schedules_; }
  ETA_Camera_Repository& eta_cameras() { return *eta_cameras_; }

 private:
  std::unique_ptr<Camera_Repository> cameras_;
  std::unique_ptr<Server_Repository> servers_;
  std::unique_ptr<Metadata_Event_Category_Repository> categories_;
  std::unique_ptr<Metadata_Event_Subscription_Repository> subscriptions_;
  std::unique_ptr<Trigger_Repository> triggers_;
  std::unique_ptr<Schedule_Repository> schedules_;
  std::unique_ptr<ETA_Camera_Repository> eta_cameras_;
};

}  // namespace kuv::vemora
