// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
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

/// Makes the tables of a site in one transaction, unless another process made some before this one
/// had the session, which is an exclusive one. Answers the version of the tables that are there
/// then. Throws Database_Error.
std::int32_t make_tables(Engine& engine, Engine::Session& session);

/// Brings tables of version `present` up to date, in the current transaction, which may write and
/// is that of an exclusive session. Nothing of it is kept before that transaction is committed.
/// Throws Database_Error; the transaction can only be rolled back then.
void bring_up_to_date(Engine& engine, std::int32_t present);

}  // namespace kuv::vemora::embedded_server
