// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/warnings/judged_triggers.h"

namespace kuv::vemora::operations {

/// Warns of the texts that make the database refuse a trigger or a subscription of it: those of
/// triggers that are at work on this server, of which alone anything is stored.
void warn_of_unstorable_texts(const std::shared_ptr<embedded_server::Database>& database,
                              const std::vector<Judged_Trigger>& triggers, Found_Warnings& found);

}  // namespace kuv::vemora::operations
