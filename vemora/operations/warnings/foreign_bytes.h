// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <vector>

#include "vemora/operations/warnings/judged_triggers.h"

namespace kuv::vemora::operations {

/// Warns of texts with bytes that are no UTF-8, but for those of triggers for other servers.
void warn_of_foreign_bytes(const embedded_server::Read_Documents& documents,
                           const std::vector<Judged_Trigger>& triggers, Found_Warnings& found);

}  // namespace kuv::vemora::operations
