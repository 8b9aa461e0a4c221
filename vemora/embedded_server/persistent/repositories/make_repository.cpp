// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {

std::shared_ptr<Repository> make_repository(const std::shared_ptr<Database>& database) {
  return std::make_shared<Repository>(
      make_camera_repository(database), make_server_repository(database),
      make_metadata_event_category_repository(database),
      make_metadata_event_subscription_repository(database), make_trigger_repository(database),
      make_schedule_repository(database), make_eta_camera_repository(database));
}

}  // namespace kuv::vemora::embedded_server
