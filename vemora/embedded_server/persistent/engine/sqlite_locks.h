// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sqlite3.h>

#include <chrono>

namespace kuv::vemora::embedded_server {

// Waiting for the locks that other programs hold on an SQLite file.

/// Makes the statements of a connection wait. The connection keeps the address of `longest`.
void wait_for_locks(sqlite3* handle, std::chrono::milliseconds& longest);

/// How long the statement waited that was just refused on this thread; nothing where it was not let
/// wait.
std::chrono::milliseconds take_vain_wait();

/// Takes the lock that whoever writes needs, in a transaction that may have read already: such a
/// one SQLite lets no statement wait in. Throws Database_Error when the lock is not to be had
/// within `longest`, and when another program wrote since the transaction first read, for then it
/// can never write.
void take_write_lock(sqlite3* handle, std::chrono::milliseconds longest);

}  // namespace kuv::vemora::embedded_server
