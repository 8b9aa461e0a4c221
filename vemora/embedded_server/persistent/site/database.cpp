// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/database.h"

#include <fmt/format.h>

#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"
#include "vemora/embedded_server/persistent/engine/open_engine.h"
#include "vemora/embedded_server/persistent/pass/documents.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/pass/site_row.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The version of the site's tables when all is done that the mode asks for; 0 where there is no
/// site.
std::int32_t find_site(Engine& engine, Open_Mode mode) {
  const std::optional<std::int32_t> version = known_version(engine);
  if (version || mode == Open_Mode::as_found) {
    return version.value_or(0);
  }
  if (mode == Open_Mode::existing) {
    throw Database_Error("it holds no site; \"init\" makes one");
  }
  const auto session = engine.open_session(Engine::Session::Access::exclusive);
  return make_tables(engine, *session);
}

}  // namespace

std::shared_ptr<Database> Database::open(const std::string& location, Open_Mode mode,
                                         std::chrono::milliseconds lock_wait) {
  std::unique_ptr<Engine> engine = open_engine(location, mode, lock_wait);
  if (!engine) {
    return nullptr;
  }
  try {
    const std::int32_t version = find_site(*engine, mode);
    return std::shared_ptr<Database>(new Database(std::move(engine), version));
  } catch (const std::exception& fault) {
    throw Database_Error(
        fmt::format("database {}: {}", engine->location(), engine->describe(fault)));
  }
}

Database::Database(std::unique_ptr<Engine> engine, std::int32_t schema_version)
    : engine_(std::move(engine)), schema_version_(schema_version) {}

Database::~Database() = default;

std::optional<std::uint64_t> Database::owner() {
  return read(shared_from_this(),
              [this](Site_Index&) { return load_site(engine_->odb()).server_id; });
}

void Database::require_owner(std::uint64_t server_id) {
  read(shared_from_this(),
       [&](Site_Index&) { embedded_server::require_owner(engine_->odb(), server_id); });
}

}  // namespace kuv::vemora::embedded_server
