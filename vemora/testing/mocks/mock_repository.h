// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <utility>

#include "vemora/platform/repositories/repository.h"
#include "vemora/testing/mocks/mock_camera_repository.h"
#include "vemora/testing/mocks/mock_eta_camera_repository.h"
#include "vemora/testing/mocks/mock_metadata_event_category_repository.h"
#include "vemora/testing/mocks/mock_metadata_event_subscription_repository.h"
#include "vemora/testing/mocks/mock_schedule_repository.h"
#include "vemora/testing/mocks/mock_server_repository.h"
#include "vemora/testing/mocks/mock_trigger_repository.h"

namespace kuv::test {

/// A `Repository` of seven strict mocks, and a hold on each of them. The mocks belong to the
/// repository and are good as long as it lives.
class Mock_Repository {
 public:
  Mock_Repository() : Mock_Repository(Parts()) {}

  template <class Mock>
  using Strict = testing::StrictMock<Mock>;

 private:
  struct Parts {
    std::unique_ptr<Strict<Mock_Camera_Repository>> cameras = make<Mock_Camera_Repository>();
    std::unique_ptr<Strict<Mock_Server_Repository>> servers = make<Mock_Server_Repository>();
    std::unique_ptr<Strict<Mock_Metadata_Event_Category_Repository>> categories =
        make<Mock_Metadata_Event_Category_Repository>();
    std::unique_ptr<Strict<Mock_Metadata_Event_Subscription_Repository>> subscriptions =
        make<Mock_Metadata_Event_Subscription_Repository>();
    std::unique_ptr<Strict<Mock_Trigger_Repository>> triggers = make<Mock_Trigger_Repository>();
    std::unique_ptr<Strict<Mock_Schedule_Repository>> schedules = make<Mock_Schedule_Repository>();
    std::unique_ptr<Strict<Mock_ETA_Camera_Repository>> eta_cameras =
        make<Mock_ETA_Camera_Repository>();
  };

  template <class Mock>
  static std::unique_ptr<Strict<Mock>> make() {
    return std::make_unique<Strict<Mock>>();
  }

  explicit Mock_Repository(Parts parts)
      : cameras(*parts.cameras),
        servers(*parts.servers),
        categories(*parts.categories),
        subscriptions(*parts.subscriptions),
        triggers(*parts.triggers),
        schedules(*parts.schedules),
        eta_cameras(*parts.eta_cameras),
        repository(std::make_shared<vemora::Repository>(
            std::move(parts.cameras), std::move(parts.servers), std::move(parts.categories),
            std::move(parts.subscriptions), std::move(parts.triggers), std::move(parts.schedules),
            std::move(parts.eta_cameras))) {}

 public:
  Strict<Mock_Camera_Repository>& cameras;
  Strict<Mock_Server_Repository>& servers;
  Strict<Mock_Metadata_Event_Category_Repository>& categories;
  Strict<Mock_Metadata_Event_Subscription_Repository>& subscriptions;
  Strict<Mock_Trigger_Repository>& triggers;
  Strict<Mock_Schedule_Repository>& schedules;
  Strict<Mock_ETA_Camera_Repository>& eta_cameras;
  std::shared_ptr<vemora::Repository> repository;
};

}  // namespace kuv::test
