// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/index/site_index.h"

namespace kuv::vemora::embedded_server {

class Engine;

/// Writes net changes in key order, and notes the cameras whose subscriptions changed as pending.
void write_changes(Engine& engine, const Site_Index::Net_Changes& net);

/// Whether the database belongs to a server.
bool is_claimed(odb::database& database);

/// From now on the database belongs to that server.
void claim_for(odb::database& database, std::uint64_t server_id);

/// Adds net changes to the report on a pass.
void append_changes(const Site_Index::Net_Changes& net, Changes& report);

}  // namespace kuv::vemora::embedded_server
