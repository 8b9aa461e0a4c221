// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::embedded_server {

std::unique_ptr<Camera_Repository> make_camera_repository(std::shared_ptr<Database> database);
std::unique_ptr<Server_Repository> make_server_repository(std::shared_ptr<Database> database);
std::unique_ptr<Metadata_Event_Category_Repository> make_metadata_event_category_repository(
    std::shared_ptr<Database> database);
std::unique_ptr<Metadata_Event_Subscription_Repository> make_metadata_event_subscription_repository(
    std::shared_ptr<Database> database);
std::unique_ptr<Trigger_Repository> make_trigger_repository(std::shared_ptr<Database> database);
std::unique_ptr<Schedule_Repository> make_schedule_repository(std::shared_ptr<Database> database);
std::unique_ptr<ETA_Camera_Repository> make_eta_camera_repository(
    std::shared_ptr<Database> database);

}  // namespace kuv::vemora::embedded_server
