// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <chrono>
#include <cstdint>
#include <odb/pgsql/connection.hxx>
#include <string>

namespace kuv::vemora::embedded_server {

/// Makes the tables of a site in `schema`, and the schema too, where `present` is 0, or brings
/// those of that version up to date. In the transaction of the connection. Tables of other programs
/// are left alone; whoever is at one of ours is waited for, for `lock_wait`. Throws Database_Error,
/// and what ODB throws.
void run_schema_steps(odb::pgsql::connection& connection, const std::string& schema,
                      std::int32_t present, std::chrono::milliseconds lock_wait);

}  // namespace kuv::vemora::embedded_server
