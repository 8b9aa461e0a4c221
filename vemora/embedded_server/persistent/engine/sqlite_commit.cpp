// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_commit.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstdint>
#include <limits>
#include <odb/exceptions.hxx>
#include <odb/sqlite/exceptions.hxx>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/sqlite_statements.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Makes the transaction at hand the next commit, and answers its number.
std::int64_t number_commit(sqlite3* handle) {
  const std::int64_t number = number_of_next_commit(number_of_last_commit(handle));
  run_script(handle, fmt::format("PRAGMA user_version = {}", number).c_str());
  return number;
}

bool is_in_transaction(sqlite3* handle) {
  return sqlite3_get_autocommit(handle) == 0;
}

/// What was cut off a file may be there again after a power cut, unless the file is synced then.
bool sync_log(sqlite3* handle) {
  sqlite3_file* log = nullptr;
  const int found = sqlite3_file_control(handle, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  return found == SQLITE_OK && (log == nullptr || log->pMethods == nullptr ||
                                log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) == SQLITE_OK);
}

/// Moves what is committed from the log into the database and cuts the log to nothing, for good.
bool empty_log(sqlite3* handle) {
  return sqlite3_wal_checkpoint_v2(handle, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) ==
             SQLITE_OK &&
         sync_log(handle);
}

/// Whether that commit is the last one; nothing where it is not known.
std::optional<bool> is_kept(sqlite3* handle, std::int64_t number, std::int64_t number_before) {
  const std::optional<std::int64_t> last = number_of_last_kept_commit(handle);
  return last == number || last == number_before ? std::make_optional(last == number)
                                                 : std::nullopt;
}

std::string words_of(const std::exception& fault) {
  const auto* const refused = dynamic_cast<const odb::sqlite::database_exception*>(&fault);
  return refused != nullptr ? refused->message() : fault.what();
}

/// Gives up a transaction that a failed commit left open, as one that was refused as busy does.
void roll_back(sqlite3* handle) {
  sqlite3_exec(handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

}  // namespace

std::int64_t number_of_last_commit(sqlite3* handle) {
  return query_number(handle, "PRAGMA user_version");
}

std::int64_t number_of_next_commit(std::int64_t number) {
  return number % std::numeric_limits<std::int32_t>::max() + 1;
}

std::optional<std::int64_t> number_of_last_kept_commit(sqlite3* handle) {
  if (!empty_log(handle)) {
    return std::nullopt;
  }
  try {
    return number_of_last_commit(handle);
  } catch (const Database_Error&) {
    return std::nullopt;
  }
}

void commit_and_know(odb::sqlite::connection& connection, odb::transaction& transaction,
                     bool changes) {
  sqlite3* const handle = connection.handle();
  const std::int64_t before = changes ? number_of_last_commit(handle) : 0;
  const std::int64_t number = changes ? number_commit(handle) : 0;
  try {
    transaction.commit();
  } catch (const std::exception& fault) {
    if (is_in_transaction(handle)) {
      roll_back(handle);
      throw;
    }
    if (!changes) {
      throw;
    }
    const std::optional<bool> kept = is_kept(handle, number, before);
    if (!kept) {
      throw Commit_Not_Known(words_of(fault));
    }
    if (!*kept) {
      throw;
    }
  }
}

}  // namespace kuv::vemora::embedded_server
