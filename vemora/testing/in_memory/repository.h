// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <utility>

#include "vemora/platform/repositories/repository.h"
#include "vemora/testing/in_memory/camera_repository.h"
#include "vemora/testing/in_memory/eta_camera_repository.h"
#include "vemora/testing/in_memory/site_repositories.h"
#include "vemora/testing/in_memory/subscription_repository.h"
#include "vemora/testing/in_memory/tables.h"
#include "vemora/testing/in_memory/trigger_repository.h"

namespace kuv::test {

// A repository that keeps its records in memory, for tests of a server that has no database at
// hand, and for whoever wants to read what each operation of the contracts means. It is complete
// and plain: it keeps to all that the contracts say, by looping over all rows.
//
//     const auto tables = std::make_shared<In_Memory_Tables>();
//     Site_Description site;
//     site.given_camera(10).with_topic("tns1:VideoSource/MotionAlarm");
//     store(site, *tables);
//     const auto repository = make_in_memory_repository(tables);
//
// Every answer is a copy: what a caller does to a record is stored by add and update alone. There
// are no transactions and no locks.
//
// The functions of the records (add_trigger, camera_id, Record_Comparator, ...) are those of the
// persistence library that the program is linked with. That library notes in `link_changes` which
// links were added and removed, as the embedded server's does: an update reads it from there.

/// The seven sub-repositories, so that a test can put one of its own in the place of one of them.
struct In_Memory_Parts {
  explicit In_Memory_Parts(const std::shared_ptr<In_Memory_Tables>& tables)
      : cameras(std::make_unique<In_Memory_Camera_Repository>(tables)),
        servers(std::make_unique<In_Memory_Server_Repository>(tables)),
        categories(std::make_unique<In_Memory_Metadata_Event_Category_Repository>(tables)),
        subscriptions(std::make_unique<In_Memory_Metadata_Event_Subscription_Repository>(tables)),
        triggers(std::make_unique<In_Memory_Trigger_Repository>(tables)),
        schedules(std::make_unique<In_Memory_Schedule_Repository>(tables)),
        eta_cameras(std::make_unique<In_Memory_ETA_Camera_Repository>(tables)) {}

  std::unique_ptr<Camera_Repository> cameras;
  std::unique_ptr<Server_Repository> servers;
  std::unique_ptr<Metadata_Event_Category_Repository> categories;
  std::unique_ptr<Metadata_Event_Subscription_Repository> subscriptions;
  std::unique_ptr<Trigger_Repository> triggers;
  std::unique_ptr<Schedule_Repository> schedules;
  std::unique_ptr<ETA_Camera_Repository> eta_cameras;
};

inline std::shared_ptr<Repository> make_repository_of(In_Memory_Parts parts) {
  return std::make_shared<Repository>(std::move(parts.cameras), std::move(parts.servers),
                                      std::move(parts.categories), std::move(parts.subscriptions),
                                      std::move(parts.triggers), std::move(parts.schedules),
                                      std::move(parts.eta_cameras));
}

/// A repository over the tables, which it shares with the caller.
inline std::shared_ptr<Repository> make_in_memory_repository(
    const std::shared_ptr<In_Memory_Tables>& tables) {
  return make_repository_of(In_Memory_Parts(tables));
}

}  // namespace kuv::test
