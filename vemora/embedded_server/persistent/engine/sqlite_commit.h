// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <odb/sqlite/connection.hxx>
#include <odb/transaction.hxx>
#include <optional>

namespace kuv::vemora::embedded_server {

/// Which commit is the last one that the database holds: a number of the file, which SQLite leaves
/// to us.
std::int64_t number_of_last_commit(sqlite3* handle);

std::int64_t number_of_next_commit(std::int64_t number);

/// The same when the log is cut to nothing, so that it will stay so; nothing where that fails.
std::optional<std::int64_t> number_of_last_kept_commit(sqlite3* handle);

/// Commits a transaction of that connection. `changes` says whether a row was written in it.
///
/// A commit that SQLite calls failed may stand in the log all the same: when the sync failed, it is
/// read back as absent, and the next process that opens the database replays it. So the log is cut
/// to nothing then, and what the database holds after that is what is told: nothing is thrown where
/// it was committed after all, Commit_Not_Known where the log cannot be cut either.
void commit_and_know(odb::sqlite::connection& connection, odb::transaction& transaction,
                     bool changes);

}  // namespace kuv::vemora::embedded_server
