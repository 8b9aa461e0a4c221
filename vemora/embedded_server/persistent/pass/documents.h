// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/pass_scope.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

// The rows about the database itself, in the transaction at hand.

/// Throws Database_Error when the database belongs to another server.
void require_owner(odb::database& database, std::uint64_t server_id);

/// The document of that kind, "config" or "mapping"; nothing before one was accepted.
std::optional<std::string> load_document(odb::database& database, const char* kind);

/// Both.
Documents load_documents(odb::database& database);

/// Whether the documents that are given are those that are stored.
bool are_stored(odb::database& database, const Documents& accepted);

/// Stores the documents that are given.
void store_documents(odb::database& database, const Documents& accepted);

}  // namespace kuv::vemora::embedded_server
