// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>

#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Of the tables.
constexpr std::int32_t first_version_with_history = 3;

/// The newest entry of the history, in the transaction at hand.
std::optional<rows::History_Entry> last_entry_in(odb::database& database);

}  // namespace kuv::vemora::embedded_server
