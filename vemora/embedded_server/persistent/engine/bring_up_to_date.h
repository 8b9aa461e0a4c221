#pragma once

#include <cstdint>
#include <optional>

#include "vemora/embedded_server/persistent/engine/engine.h"

namespace kuv::vemora::embedded_server {

/// Throws Database_Error when this library does not know the tables of that version.
void require_known_version(std::int32_t version);

/// The version of a site's tables; nothing where there is no site. Throws Database_Error when they
/// are none that this library knows.
std::optional<std::int32_t> known_version(Engine& engine);

/// Makes the tables of a site, or brings those of an older version up to date, unless another
/// process did so before this one had the session, which is an exclusive one. One transaction:
/// whatever happens, the tables and rows are those of before or those of after. Throws
/// Database_Error.
void bring_up_to_date(Engine& engine, Engine::Session& session);

}  // namespace kuv::vemora::embedded_server
