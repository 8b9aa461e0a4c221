// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/history_entry.h"
#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace kuv::vemora::embedded_server {

/// Puts into an entry what its pass has changed.
void note_changes(const Changes& changes, rows::History_Entry& row);

/// Throws Database_Error if the row is damaged.
History_Entry entry_of(const rows::History_Entry& row);

}  // namespace kuv::vemora::embedded_server
