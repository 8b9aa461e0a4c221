// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/warnings/judged_triggers.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::operations {

/// Warns of filters that match no camera or no generic subscription, and of sources that no camera
/// of the trigger can bring anything for.
void warn_of_empty_selections(const embedded_server::Read_Documents& documents,
                              const std::shared_ptr<embedded_server::Database>& database,
                              Repository& repository, const std::vector<Judged_Trigger>& triggers,
                              Found_Warnings& found);

}  // namespace kuv::vemora::operations
