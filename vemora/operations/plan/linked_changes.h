// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/operations/plan/plan.h"

namespace kuv::vemora::operations {

/// What a pass does to one record that serves triggers.
struct Linked_Change {
  std::uint64_t id = 0;
  Planned_Action action;
  Planned_Links triggers;
};

/// Works out what became of such records, ascending by id. `before` has the triggers of each record
/// that was stored.
std::vector<Linked_Change> linked_changes(
    const std::map<std::uint64_t, Planned_Ids>& before,
    const embedded_server::Changes::Of<std::uint64_t>& records,
    const embedded_server::Changes::Of<embedded_server::Changes::Link>& links);

}  // namespace kuv::vemora::operations
