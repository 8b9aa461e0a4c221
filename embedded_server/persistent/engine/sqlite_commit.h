#pragma once

#include "vemora/platform/odb_runtime.h"

#include <odb/sqlite/connection.hxx>
#include <odb/transaction.hxx>

namespace kuv::vemora::embedded_server {

/// Commits a transaction of that connection. `changes` says whether a row was written in it.
///
/// A commit that SQLite calls failed may stand in the log all the same: when the sync failed, it is
/// read back as absent, and the next process that opens the database replays it. So the log is cut
/// to nothing then, and what the database holds after that is what is told: nothing is thrown where
/// it was committed after all, Commit_Not_Known where the log cannot be cut either.
void commit_and_know(odb::sqlite::connection& connection, odb::transaction& transaction,
                     bool changes);

}  // namespace kuv::vemora::embedded_server
