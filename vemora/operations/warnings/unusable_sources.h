// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/warnings/judged_triggers.h"

namespace kuv::vemora::operations {

/// Warns of sources of a type that this server does not know, of triggers that have no other, and
/// of object types that the site's inventory does not know.
void warn_of_sources(const std::shared_ptr<embedded_server::Database>& database,
                     const std::vector<Judged_Trigger>& triggers, Found_Warnings& found);

}  // namespace kuv::vemora::operations
