// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <odb/pgsql/connection.hxx>

namespace kuv::vemora::embedded_server {

/// Commits the transaction that is open on a connection. A server that replicates synchronously
/// answers when a standby has it: that wait is broken off when it has taken `standby_wait`, nothing
/// else is. Throws Commit_Not_Known, and what ODB throws when nothing was kept.
void run_commit(odb::pgsql::connection& connection, std::chrono::milliseconds standby_wait);

}  // namespace kuv::vemora::embedded_server
