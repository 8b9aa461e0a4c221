// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/explain/explain.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// How many there are, and the first of them.
struct Inactive_Triggers {
  std::size_t count = 0;
  std::vector<Explanation> first;  ///< without cameras and subscriptions
};

/// The triggers of the stored configuration that have no record, ascending by id, and why the first
/// `most` of them have none. Reads one state of the site; writes nothing and waits for nobody.
/// Throws Database_Error.
VEMORA_API Inactive_Triggers
inactive_triggers(const std::shared_ptr<embedded_server::Database>& database,
                  std::uint64_t server_id, std::size_t most);

}  // namespace kuv::vemora::operations
