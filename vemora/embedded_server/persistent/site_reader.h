// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/platform/export.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

// Everything that is stored, for whoever shows it. Lists ascend by id, links are loaded unless what
// they lead to is gone. Each call joins the pass that is open on its thread, or reads one
// consistent state of its own, and throws Database_Error.

VEMORA_API std::vector<std::shared_ptr<trigger>> read_triggers(
    const std::shared_ptr<Database>& database);
VEMORA_API std::vector<std::shared_ptr<metadata_event_subscription>> read_subscriptions(
    const std::shared_ptr<Database>& database);
VEMORA_API std::vector<std::shared_ptr<eta_camera>> read_eta_cameras(
    const std::shared_ptr<Database>& database);
VEMORA_API std::vector<std::shared_ptr<camera>> read_cameras(
    const std::shared_ptr<Database>& database);
VEMORA_API Documents read_documents(const std::shared_ptr<Database>& database);

/// Whether the stored capabilities of a camera can be read. Whoever looks at them where they cannot
/// fails the pass that is open; asking does not.
VEMORA_API bool has_readable_capabilities(const std::shared_ptr<Database>& database,
                                          std::uint64_t camera_id);

}  // namespace kuv::vemora::embedded_server
