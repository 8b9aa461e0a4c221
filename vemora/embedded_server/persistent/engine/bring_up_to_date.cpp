// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"

#include <fmt/format.h>

#include <new>
#include <odb/transaction.hxx>
#include <string>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/unfit_for_step.h"

namespace kuv::vemora::embedded_server {
namespace {

const char* fate_of_new_tables(Commit_Not_Known::Known known) {
  return known == Commit_Not_Known::Known::nothing
             ? "it is not known whether its tables were made"
             : "its tables are made on this server, and it is not known whether a standby has them";
}

}  // namespace

void require_known_version(std::int32_t version) {
  if (version > current_schema_version) {
    throw Database_Error(
        fmt::format("it was made by a newer version of this program (schema {}, known up to {})",
                    version, current_schema_version));
  }
  if (version < 1) {
    throw Database_Error(
        "its table site does not say which version of this program made it; move the database away "
        "and restore a backup");
  }
}

std::optional<std::int32_t> known_version(Engine& engine) {
  const std::optional<std::int32_t> version = engine.schema_version();
  if (version) {
    require_known_version(*version);
  }
  return version;
}

std::int32_t make_tables(Engine& engine, Engine::Session& session) {
  if (const std::optional<std::int32_t> version = known_version(engine)) {
    return *version;
  }
  try {
    odb::transaction transaction(session.begin_immediately());
    engine.migrate(0);
    session.commit(transaction);
  } catch (const Commit_Not_Known& fault) {
    throw Database_Error(fmt::format("{}; {}", fault.what(), fate_of_new_tables(fault.known())));
  }
  return current_schema_version;
}

void bring_up_to_date(Engine& engine, std::int32_t present) {
  require_known_version(present);
  if (present == current_schema_version) {
    return;
  }
  constexpr const char* words =
      "its tables cannot be brought up to date, and nothing was changed: {}";
  try {
    engine.migrate(present);
  } catch (const Unfit_For_Step& fault) {
    throw Database_Error(fmt::format("{}; the commands that only read go on working",
                                     fmt::format(words, fault.what())));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& fault) {
    throw Database_Error(fmt::format(words, engine.describe(fault)));
  }
}

}  // namespace kuv::vemora::embedded_server
