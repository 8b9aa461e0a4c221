// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <vector>

#include "vemora/operations/warnings/judged_triggers.h"

namespace kuv::vemora::operations {

/// Warns of keys that nobody reads. What another server of the same configuration may understand is
/// left to that server: triggers that are not for this one, and sources of an unknown type.
void warn_of_unknown_keys(const embedded_server::Read_Documents& documents,
                          const std::vector<Judged_Trigger>& triggers, Found_Warnings& found);

}  // namespace kuv::vemora::operations
