#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"

#include <fmt/format.h>

#include <new>
#include <string>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"

namespace kuv::vemora::embedded_server {
namespace {

std::string fate_of_tables(bool are_new, Commit_Not_Known::Known known) {
  const char* const what = are_new ? "made" : "brought up to date";
  return known == Commit_Not_Known::Known::nothing
             ? fmt::format("it is not known whether its tables were {}", what)
             : fmt::format(
                   "its tables are {} on this server, and it is not known whether a standby has "
                   "them",
                   what);
}

}  // namespace

void require_known_version(std::int32_t version) {
  if (version > current_schema_version) {
    throw Database_Error(
        fmt::format("it was made by a newer version of this program (schema {}, known up to {})",
                    version, current_schema_version));
  }
  if (version < 1) {
    throw Database_Error("it does not say which version made it");
  }
}

std::optional<std::int32_t> known_version(Engine& engine) {
  const std::optional<std::int32_t> version = engine.schema_version();
  if (version) {
    require_known_version(*version);
  }
  return version;
}

void bring_up_to_date(Engine& engine, Engine::Session& session) {
  const std::optional<std::int32_t> version = known_version(engine);
  if (version == current_schema_version) {
    return;
  }
  try {
    engine.migrate(session);
  } catch (const Commit_Not_Known& fault) {
    throw Database_Error(
        fmt::format("{}; {}", fault.what(), fate_of_tables(!version, fault.known())));
  } catch (const std::bad_alloc&) {
    throw;  // it may have struck in the commit
  } catch (const std::exception& fault) {
    if (!version) {
      throw;
    }
    throw Database_Error(
        fmt::format("its tables cannot be brought up to date, and nothing was changed: {}",
                    engine.describe(fault)));
  }
}

}  // namespace kuv::vemora::embedded_server
