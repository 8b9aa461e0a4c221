// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
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
/// here and alive as long as this object. What the contracts of all of them have in common:
///
/// Threads. They are called on the thread that called the trigger manager, one call at a time, and
/// only as long as one of its operations runs. They must not call it back. It assumes nothing about
/// locks of theirs.
///
/// Transactions. The trigger manager opens none: a server puts its own around the call. Each query
/// answers what is stored together with what the same pass has written so far. The last write of a
/// pass is ETA_Camera_Repository::delete_stale.
///
/// Faults. Every operation may throw. What it costs: while the documents are parsed (servers,
/// schedules), the operation of the trigger manager fails before anything was written. While a
/// trigger is processed (find_by_id, add, update, the queries), an exception derived from
/// std::exception costs that trigger: it is reported as an error and not applied, so that the
/// clean-up DELETES it with its links, and the pass goes on and succeeds. In the clean-up and after
/// it (get_stale, the deletions, get_all), it fails the pass. Therefore, after a fault, every
/// operation must keep throwing until the pass ends: otherwise, a fault that is over after one call
/// costs a trigger that is in order. An exception that is not derived from std::exception always
/// ends the operation.
///
/// Ownership. Records are shared. The repository may keep those that it is given, and may answer
/// the same object each time or copies; the trigger manager compares records by id alone, changes
/// records that were answered before it hands them to update, and keeps none beyond the pass.
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

  /// The one for that kind of record.
  ///@{
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
  ///@}

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
