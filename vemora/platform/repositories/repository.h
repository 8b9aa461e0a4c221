#pragma once

#include <memory>
#include <utility>

#include "vemora/platform/errors/required.h"
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
  /// Takes the seven sub-repositories. Null ones are taken too; who asks for one gets
  /// Internal_Error<std::logic_error>, whose text names it.
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

  Camera_Repository& cameras() {
    return required(cameras_, "The repository was constructed without a camera repository");
  }
  Server_Repository& servers() {
    return required(servers_, "The repository was constructed without a server repository");
  }
  Metadata_Event_Category_Repository& metadata_event_categories() {
    return required(categories_,
                    "The repository was constructed without a metadata event category repository");
  }
  Metadata_Event_Subscription_Repository& metadata_event_subscriptions() {
    return required(
        subscriptions_,
        "The repository was constructed without a metadata event subscription repository");
  }
  Trigger_Repository& triggers() {
    return required(triggers_, "The repository was constructed without a trigger repository");
  }
  Schedule_Repository& schedules() {
    return required(schedules_, "The repository was constructed without a schedule repository");
  }
  ETA_Camera_Repository& eta_cameras() {
    return required(eta_cameras_,
                    "The repository was constructed without an ETA camera repository");
  }

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
