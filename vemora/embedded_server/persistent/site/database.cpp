#include "vemora/embedded_server/persistent/database.h"

#include <fmt/format.h>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/open_engine.h"
#include "vemora/embedded_server/persistent/pass/documents.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The version of the schema; nothing where there is none yet. Throws where it is not known here.
std::optional<std::int32_t> known_version(Engine& engine) {
  const std::optional<std::int32_t> version = engine.schema_version();
  if (version > current_schema_version) {
    throw Database_Error(
        fmt::format("it was made by a newer version of this program (schema {}, known up to {})",
                    *version, current_schema_version));
  }
  return version;
}

/// Makes the site or brings it up to date, unless another process did while this one waited.
void migrate(Engine& engine) {
  const auto session = engine.open_session(Engine::Session::Access::exclusive);
  if (known_version(engine) != current_schema_version) {
    engine.migrate(*session);
  }
}

/// Whether the database holds a site, when all is done that the mode asks for.
bool find_site(Engine& engine, Open_Mode mode) {
  const std::optional<std::int32_t> version = known_version(engine);
  if (!version && mode == Open_Mode::existing) {
    throw Database_Error("it holds no site; \"init\" makes one");
  }
  if (!version && mode == Open_Mode::as_found) {
    return false;
  }
  if (version != current_schema_version) {
    migrate(engine);
  }
  return true;
}

}  // namespace

std::shared_ptr<Database> Database::open(const std::string& location, Open_Mode mode,
                                         std::chrono::milliseconds lock_wait) {
  std::unique_ptr<Engine> engine = open_engine(location, mode, lock_wait);
  if (!engine) {
    return nullptr;
  }
  try {
    const bool holds_site = find_site(*engine, mode);
    return std::shared_ptr<Database>(new Database(std::move(engine), holds_site));
  } catch (const Commit_Not_Known& fault) {
    throw Database_Error(
        fmt::format("database {}: {}; {}", engine->location(), fault.what(),
                    fault.known() == Commit_Not_Known::Known::nothing
                        ? "it is not known whether its tables were made"
                        : "its tables are made on this server, and it is not known whether a "
                          "standby has them"));
  } catch (const std::exception& fault) {
    throw Database_Error(
        fmt::format("database {}: {}", engine->location(), engine->describe(fault)));
  }
}

Database::Database(std::unique_ptr<Engine> engine, bool holds_site)
    : engine_(std::move(engine)), holds_site_(holds_site) {}

Database::~Database() = default;

std::optional<std::uint64_t> Database::owner() {
  return read(shared_from_this(), [this](Site_Index&) {
    rows::Site site;
    engine_->odb().load(1, site);
    return site.server_id;
  });
}

void Database::require_owner(std::uint64_t server_id) {
  read(shared_from_this(),
       [&](Site_Index&) { embedded_server::require_owner(engine_->odb(), server_id); });
}

}  // namespace kuv::vemora::embedded_server
